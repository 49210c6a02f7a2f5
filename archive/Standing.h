#pragma once

#include <string>

#include "platform/Files.h"

namespace archive {

/// What stands on disk already where members are to come out. Looks once for a folder that is not there, and
/// for nothing in it: most of what is extracted is new.
class Standing {
 public:
  explicit Standing(const platform::Files& files) : files_(files) {}

  /// Whether a file, a folder or a link has this path (Windows form).
  bool at(const std::string& path);
  void forget() { missing_.clear(); }  ///< folders may have been made meanwhile

 private:
  const platform::Files& files_;
  std::string there_;    // the last folder that was looked for and found
  std::string missing_;  // the last one that was not; both with a trailing backslash
};

}  // namespace archive
