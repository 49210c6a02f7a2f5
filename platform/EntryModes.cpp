#include "platform/EntryModes.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace platform {
namespace {

constexpr int pathOnly = O_PATH | O_CLOEXEC;
constexpr unsigned modeBits = 07777;

}  // namespace

EntryModes::EntryModes(const DriveTable& drives, const std::string& folder)
    : drives_(drives), top_(drives.toHost(folder).value_or("")) {}

/// Step by step, so that a folder that has become a link is noticed.
bool EntryModes::enter(const std::string& folder) {
  if (folder_ && folder == entered_) return true;
  entered_ = folder;
  folder_ = Descriptor(open(top_.c_str(), pathOnly | O_DIRECTORY));
  for (std::size_t at = top_.size() == 1 ? 0 : top_.size(); folder_ && at < folder.size();) {
    const std::size_t end = std::min(folder.find('/', at + 1), folder.size());
    const std::string name = folder.substr(at + 1, end - at - 1);
    folder_ = Descriptor(openat(folder_.get(), name.c_str(), pathOnly | O_DIRECTORY | O_NOFOLLOW));
    at = end;
  }
  return static_cast<bool>(folder_);
}

EntryModes::Result EntryModes::set(std::string_view path, unsigned mode,
                                   const std::function<bool(unsigned)>& wanted) {
  const std::string host = drives_.toHost(path).value_or("");
  const std::size_t slash = host.rfind('/');
  if (top_.empty() || slash == host.npos || !host.starts_with(top_)) return Result::Gone;
  if (!enter(host.substr(0, slash))) return Result::Gone;
  const Descriptor entry(openat(folder_.get(), host.c_str() + slash + 1, pathOnly | O_NOFOLLOW));
  struct stat status {};
  if (fstat(entry.get(), &status) != 0) return Result::Gone;
  if (S_ISLNK(status.st_mode) || !wanted(status.st_mode & modeBits)) return Result::Unwanted;
  const std::string itself = "/proc/self/fd/" + std::to_string(entry.get());
  return chmod(itself.c_str(), static_cast<mode_t>(mode)) == 0 ? Result::Set : Result::Refused;
}

}  // namespace platform
