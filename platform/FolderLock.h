#pragma once

#include <chrono>
#include <functional>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/DriveTable.h"

namespace platform {

/// Keeps other programs that ask for the same out of a folder, for as long as it lives. The folder itself is
/// locked: nothing is left behind.
class FolderLock {
 public:
  /// Waits while another program holds it, at most so long, and not after `goesOn` says false.
  FolderLock(const DriveTable& drives, std::string_view folder, std::chrono::milliseconds patience,
             const std::function<bool()>& goesOn);
  explicit operator bool() const { return held_; }

 private:
  Descriptor folder_;
  bool held_ = false;
};

}  // namespace platform
