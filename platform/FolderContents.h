#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"

namespace platform {

/// The names in a folder, held form, in the system's order. Links stand in neither list.
struct FolderContents {
  std::vector<std::string> folders;
  std::vector<std::string> others;
};

/// Reads names and kinds only; nullopt when the folder cannot be read.
std::optional<FolderContents> contentsOf(const DriveTable& drives, std::string_view folder);

}  // namespace platform
