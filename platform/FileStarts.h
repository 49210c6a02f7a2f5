#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/DriveTable.h"

namespace platform {

/// Reads the first bytes of many files. Files of one folder in a row cost little more than opening each. What
/// is known to be a regular file may be asked for only; a link in its place is not followed, and nothing is
/// waited for.
class FileStarts {
 public:
  explicit FileStarts(const DriveTable& drives) : drives_(drives) {}

  /// Up to `most` bytes of a file (name in held form) in a folder (Windows path); none where it cannot be
  /// read.
  std::string_view read(std::string_view folder, std::string_view name, std::size_t most);

 private:
  const DriveTable& drives_;
  std::string folder_;  ///< Windows path
  Descriptor opened_;
  std::string bytes_;
};

}  // namespace platform
