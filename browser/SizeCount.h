#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/DriveTable.h"

namespace browser {

struct CountedSize {
  std::size_t items = 0;    ///< that are counted, from the first one on
  std::uint64_t bytes = 0;  ///< of these
  bool ended = false;       ///< no more will come
};

/// The total size of some files and folders, counted in the background by two threads. An item that is a link
/// counts what it leads to; for what stands below a folder see SizeWalk.h. What cannot be read adds nothing.
class SizeCount {
 public:
  /// Begins. `items` are Windows paths.
  SizeCount(const platform::DriveTable& drives, std::vector<std::string> items);
  ~SizeCount();  ///< stops at once; a thread that waits for a disk is not waited for
  SizeCount(const SizeCount&) = delete;
  SizeCount& operator=(const SizeCount&) = delete;

  CountedSize soFar() const;

 private:
  class Work;
  std::shared_ptr<Work> work_;  // shared with the threads
};

}  // namespace browser
