#pragma once

#include <array>
#include <functional>
#include <string_view>

#include "perms/PermissionPlan.h"
#include "runtime/Services.h"

namespace perms {

/// Read, write, execute of owner, group, everyone, in this order.
constexpr std::size_t modeBoxes = 9;

enum class Box {
  Clear,
  Checked,
  Mixed,  ///< the items differ in it; shown clear
};

/// What the dialog shows of its items before anything is chosen.
struct ShownModes {
  std::array<Box, modeBoxes> boxes{};
  bool folderInvolved = false;
};

/// What the stored preferences say: automatic, or by hand; modes by kind, or as they are on disk.
bool automaticByDefault(const runtime::Settings& settings);
bool kindsByDefault(const runtime::Settings& settings);

/// By kind, or from the lines of `ls -ldn` for the items, some hundred at a time. A stop leaves boxes clear.
ShownModes shownModes(const runtime::Services& services, const std::vector<std::string>& paths);

/// The boxes for the lines that `ls -l` printed of `items` entries: the first line is what others are
/// compared with. The owner's read box is not touched. `goesOn` is asked after each line.
std::array<Box, modeBoxes> boxesOfLines(std::string_view output, std::size_t items,
                                        const std::function<bool()>& goesOn);

}  // namespace perms
