#pragma once

#include <array>
#include <cstddef>

#include "runtime/Settings.h"

namespace shell {

/// What the Options dialog edits: the settings of the machine, except the first-run flag.
struct Options {
  static constexpr std::size_t menuItems = 6;
  static constexpr int manual = 0;     ///< of permissionMode
  static constexpr int automatic = 1;  ///< likewise
  static constexpr int asOnDisk = 0;   ///< of permissions
  static constexpr int byKind = 1;     ///< likewise

  bool useExtension = false;
  std::array<bool, menuItems> items{};  ///< of the file manager's menu, in the dialog's order
  int permissionMode = manual;          ///< any other number than the two: neither is chosen
  int permissions = byKind;             ///< likewise
  bool usr8 = true;
};

/// Missing, empty and negative values, and texts that are no number, have their defaults.
Options readOptions(const runtime::Settings& settings);
/// What cannot be written is a line of the log and keeps its old value.
void saveOptions(runtime::Settings& settings, const Options& options);

}  // namespace shell
