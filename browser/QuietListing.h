#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browser/PaneRows.h"
#include "platform/DriveTable.h"

namespace browser {

/// Reads a folder again in the background, in a thread that touches no window: its rows with all that `ls`
/// would say of them, asked of the system itself. Nothing is shown and no gate is held meanwhile.
class QuietListing {
 public:
  /// Begins. `folder` is a Windows path.
  QuietListing(const platform::DriveTable& drives, std::string folder, ListingChoice choice);
  ~QuietListing();  ///< not waited for

  struct Found {
    std::string folder;
    bool there = false;         ///< the folder can be read
    std::vector<PaneRow> rows;  ///< in listing order
    std::chrono::steady_clock::duration took{};
  };
  std::optional<Found> take();  ///< once, when it has ended

 private:
  class Work;
  std::shared_ptr<Work> work_;  // shared with the thread
};

}  // namespace browser
