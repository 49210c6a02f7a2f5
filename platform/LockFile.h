#pragma once

#include <string>

#include "platform/Descriptor.h"

namespace platform {

/// A file that its maker holds locked (flock) for as long as it lives, however it ends, so that others can
/// tell whether the maker is still there. Host paths.
class LockFile {
 public:
  LockFile() = default;  ///< none

  /// Makes a new one. None when the name is taken, or when somebody took it for an abandoned one meanwhile.
  /// Where the file system has no locks the file stands unlocked, and nobody can take it over either.
  static LockFile make(const std::string& path);
  /// One of the same user that nobody holds any more; none otherwise.
  static LockFile takeOver(const std::string& path);

  explicit operator bool() const { return static_cast<bool>(file_); }

 private:
  explicit LockFile(Descriptor file) : file_(std::move(file)) {}
  Descriptor file_;
};

}  // namespace platform
