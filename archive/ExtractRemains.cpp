#include "archive/ExtractRemains.h"

#include <sys/stat.h>

#include <ctime>

#include "archive/ListingLine.h"
#include "archive/Standing.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

bool isEarlier(const timespec& a, const timespec& b) {
  return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
}

}  // namespace

ExtractRemains::ExtractRemains(const runtime::Services& services, std::string outFolder,
                               const std::vector<std::string>& members)
    : services_(services), outFolder_(std::move(outFolder)) {
  const platform::Files& files = services_.system.files;
  Standing standing(files);
  for (const std::string& member : members) {
    const std::string path = pathOf(member);
    if (standing.at(path) && !files.folderExists(path)) standing_.insert(member);
  }
  clock_gettime(CLOCK_REALTIME_COARSE, &start_);  // the clock of the files' times
}

std::string ExtractRemains::pathOf(const std::string& member) const {
  return runtime::withBackslashes(outFolder_ + std::string(runtime::withoutSlash(member)));
}

ExtractRemains::Made ExtractRemains::lookAt(const std::string& path, bool last) const {
  const auto host = services_.system.drives.toHost(path);
  struct stat status {};
  if (!host || lstat(host->c_str(), &status) != 0) return Made::Nothing;
  if (!S_ISREG(status.st_mode) || isEarlier(status.st_mtim, start_)) return Made::Whole;
  const bool standsForLink = status.st_size == 0 && (status.st_mode & 0777U) == 0;
  return last || standsForLink ? Made::Part : Made::Whole;
}

void ExtractRemains::clear(std::string_view printed) {
  const auto lines = completeLines(printed);
  bool last = true;
  for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
    const std::string member = heldName(*line);
    const std::string path = pathOf(member);
    const Made made = lookAt(path, last);
    if (made == Made::Nothing && isRemark(*line) && standing_.count(member) == 0) continue;  // no name
    last = false;
    if (made == Made::Whole) continue;
    if (made == Made::Part)
      services_.log.append((services_.system.files.deleteFile(path)
                                ? " Removed, only a part of it was extracted: "
                                : " Unable to remove, only a part of it was extracted: ") +
                           path);
    if (standing_.erase(member) > 0) services_.log.append(" Lost, it was being replaced: " + path);
  }
}

}  // namespace archive
