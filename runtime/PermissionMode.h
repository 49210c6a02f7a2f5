#pragma once

#include <string>
#include <string_view>

namespace runtime {

/// A Unix mode as the system handles it: three classes, each read 4 + write 2 + execute 1.
struct PermissionMode {
  static constexpr int read = 4;
  static constexpr int write = 2;
  static constexpr int execute = 1;

  int owner = 0;
  int group = 0;
  int everyone = 0;

  /// Three octal digits, owner first: "755".
  std::string text() const;

  /// What a folder gets when its files get this: each even digit is one higher.
  PermissionMode directoryVariant() const;

  /// The mode field that begins a line of `ls -l`: "-rwxr-xr-x". Only "r", "w" and "x" count, so "s" and "t"
  /// are no execute. A text without a mode field gives no permission.
  static PermissionMode fromModeField(std::string_view line);

  bool operator==(const PermissionMode&) const = default;
};

constexpr PermissionMode executableMode{7, 5, 5};  ///< executables and folders
constexpr PermissionMode plainFileMode{6, 4, 4};   ///< all other files

}  // namespace runtime
