#pragma once

#include <span>
#include <string>
#include <vector>

#include "browser/PaneRow.h"
#include "browser/PaneRows.h"
#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace browser {

/// Who shows what a listing finds.
class ListingListener {
 public:
  virtual ~ListingListener() = default;
  virtual void rowsFound(std::vector<PaneRow> rows) = 0;  ///< all that there are; no modes yet
  /// There are no rows, since the folder cannot be read; in words why.
  virtual void unreadable(const std::string& why) = 0;
  /// Of the rows whose places begin with `first`.
  virtual void modesFound(std::size_t first, std::vector<LsEntry> entries) = 0;
};

struct ListingResult {
  /// Remarks: there are rows whose modes could not be asked for. Refused: the drive is not ready, and what
  /// was shown stays. Stopped: the rows stay, those not reached without modes.
  runtime::JobEnd end = runtime::JobEnd::Done;
};

/// The job that lists one folder: its rows at once, then their modes, some hundred at a time, while events
/// run. Whoever starts it holds the gate. Where a row turns out to have no line of `ls` any more, the folder
/// is listed once more.
class FolderListing {
 public:
  FolderListing(runtime::Services services, std::string folder, ListingChoice choice,
                ListingListener& listener);

  ListingResult run();
  /// The two halves, for whoever shows a window in between. False: the drive is not ready.
  bool listRows();
  ListingResult readModes();

 private:
  bool driveReady() const;
  void tellUnreadable();
  ListingResult passModes();
  std::span<const std::string> batchAt(std::size_t first) const;  ///< empty at the end
  bool readBatch(std::size_t first);

  runtime::Services services_;
  std::string folder_;
  ListingChoice choice_;
  ListingListener& listener_;
  std::vector<std::string> names_;
  bool rowsWithoutLine_ = false;
  std::string failure_;
};

}  // namespace browser
