#include "browser/FolderListing.h"

#include <algorithm>
#include <system_error>

#include "browser/ModePass.h"
#include "platform/DirectorySearch.h"
#include "runtime/FileClass.h"

namespace browser {

using runtime::JobEnd;

FolderListing::FolderListing(runtime::Services services, std::string folder, ListingChoice choice,
                             ListingListener& listener)
    : services_(services), folder_(std::move(folder)), choice_(std::move(choice)), listener_(listener) {}

/// A drive is ready when its folder can be read.
bool FolderListing::driveReady() const {
  constexpr std::size_t driveLength = 2;
  const std::string root = folder_.substr(0, driveLength) + "\\*";
  return platform::DirectorySearch(services_.system.drives, root).next().has_value();
}

/// A stop that was asked for before is another job's to tell of.
ListingResult FolderListing::run() {
  if (services_.system.busy.stopRequested()) return {JobEnd::Stopped};
  return listRows() ? readModes() : ListingResult{JobEnd::Refused};
}

bool FolderListing::listRows() {
  if (!driveReady()) return false;
  runtime::FileClass found(services_.system.drives);
  const bool any = found.Refresh(folder_ + "\\*");
  std::vector<PaneRow> rows = paneRows(found, choice_);
  found.EmptyTrash();
  names_.clear();
  names_.reserve(rows.size());
  for (const PaneRow& row : rows) names_.push_back(row.name);
  listener_.rowsFound(std::move(rows));
  if (!any) tellUnreadable();
  return true;
}

/// A folder that is empty can be read.
void FolderListing::tellUnreadable() {
  const int problem = services_.system.files.readProblem(folder_);
  if (problem == 0) return;
  const std::string why = std::system_category().message(problem);
  services_.log.append(" Unable to read folder: " + folder_ + " (" + why + ")");
  listener_.unreadable(why);
}

ListingResult FolderListing::readModes() {
  ListingResult result = passModes();
  if (result.end == JobEnd::Done && rowsWithoutLine_ && listRows()) result = passModes();
  return result;
}

ListingResult FolderListing::passModes() {
  rowsWithoutLine_ = false;
  failure_.clear();
  for (std::size_t first = 0; first < names_.size(); first += modeBatch)
    if (!readBatch(first)) break;
  if (services_.system.busy.stopRequested()) {
    services_.log.append(" Stopped: listing " + folder_);
    return {JobEnd::Stopped};
  }
  if (failure_.empty()) return {JobEnd::Done};
  services_.log.append(" Unable to read permissions in " + folder_ + ": " + failure_);
  return {JobEnd::Remarks};
}

std::span<const std::string> FolderListing::batchAt(std::size_t first) const {
  return std::span(names_).subspan(first, std::min(modeBatch, names_.size() - first));
}

/// False when asking for more makes no sense.
bool FolderListing::readBatch(std::size_t first) {
  const auto names = batchAt(first);
  const auto next = batchAt(first + names.size());
  const platform::RunManner manner{.next = next.empty() ? std::string() : modeCommand(next)};
  const runtime::ToolResult run = services_.api.RunCapture(services_.cygwin.cygwinBin(), modeCommand(names),
                                                           runtime::withTrailingBackslash(folder_), manner);
  if (run.stopped) return false;
  BatchModes batch = modesOf(run.text, names);
  if (!run.ended() || (!run.good() && batch.withoutLine > batch.complaints)) {
    if (failure_.empty()) failure_ = howItEnded(run, "ls");
    return run.status != platform::notStarted;
  }
  rowsWithoutLine_ |= batch.withoutLine > 0;
  listener_.modesFound(first, std::move(batch.entries));
  return true;
}

}  // namespace browser
