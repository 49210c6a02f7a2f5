#include "browser/QuietListing.h"

#include <mutex>
#include <system_error>
#include <utility>

#include "platform/BackgroundThread.h"
#include "platform/Files.h"
#include "platform/HeldName.h"

namespace browser {

class QuietListing::Work {
 public:
  Work(const platform::DriveTable& drives, std::string folder, ListingChoice choice)
      : drives_(drives), folder_(std::move(folder)), choice_(std::move(choice)) {}

  void run() {
    const auto begin = std::chrono::steady_clock::now();
    Found found{folder_, false, rows(), {}};
    found.there = !found.rows.empty() || platform::Files(drives_).readProblem(folder_) == 0;
    found.took = std::chrono::steady_clock::now() - begin;
    const std::lock_guard lock(mutex_);
    found_ = std::move(found);
  }
  std::optional<Found> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(found_, std::nullopt);
  }

 private:
  /// An entry that is gone meanwhile has no row.
  std::vector<PaneRow> rows() const {
    runtime::FileClass entries(drives_);
    entries.Refresh(folder_ + "\\*");
    const std::string host = drives_.toHost(folder_).value_or(std::string()) + '/';
    std::vector<PaneRow> rows;
    for (PaneRow& row : paneRows(entries, choice_)) {
      std::optional<LsEntry> entry = lsEntryOf(host + platform::releaseName(row.name));
      if (!entry) continue;
      row.ls = std::move(*entry);
      row.place = rows.size();
      rows.push_back(std::move(row));
    }
    return rows;
  }

  const platform::DriveTable drives_;
  const std::string folder_;
  const ListingChoice choice_;
  std::mutex mutex_;
  std::optional<Found> found_;
};

QuietListing::QuietListing(const platform::DriveTable& drives, std::string folder, ListingChoice choice)
    : work_(std::make_shared<Work>(drives, std::move(folder), std::move(choice))) {
  try {
    platform::startInBackground([work = work_] { work->run(); });
  } catch (const std::system_error&) {
    work_->run();  // the system has no thread to give
  }
}

QuietListing::~QuietListing() = default;

std::optional<QuietListing::Found> QuietListing::take() { return work_->take(); }

}  // namespace browser
