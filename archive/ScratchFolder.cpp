#include "archive/ScratchFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/FolderWalk.h"
#include "platform/HeldName.h"
#include "runtime/TimeOfDay.h"
#include "runtime/modAPI.h"

namespace archive {
namespace {

constexpr int mostAttempts = 1000;
constexpr std::string_view prefix = "_PK";
constexpr std::string_view suffix = ".tmp";

bool allDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool hasScratchName(std::string_view name) {
  if (!name.starts_with(prefix) || !name.ends_with(suffix)) return false;
  name.remove_prefix(prefix.size());
  name.remove_suffix(std::min(name.size(), suffix.size()));
  const std::string_view number = name.substr(std::min(name.find('-'), name.size()));
  name.remove_suffix(number.size());
  return name.size() == 6 && allDigits(name) && (number.empty() || allDigits(number.substr(1)));
}

bool isOwn(const std::string& hostPath, mode_t kind) {
  struct stat status {};
  return lstat(hostPath.c_str(), &status) == 0 && (status.st_mode & S_IFMT) == kind &&
         status.st_uid == geteuid();
}

std::string lockOf(const std::string& hostFolder) { return hostFolder + '/' + ScratchFolder::lockName; }

/// The lock file goes last: what is left when this is cut short is still known for what it is.
bool removeScratch(const platform::Files& files, const std::string& path) {
  for (const auto& entry : files.entries(path).value_or(std::vector<platform::Files::Entry>()))
    if (entry.name != ScratchFolder::lockName) files.deleteTree(path + '\\' + entry.name);
  return files.deleteTree(path);
}

/// The folder's lock is held while it goes, so that nobody else takes it for abandoned, too.
void sweep(const platform::Files& files, runtime::Log& log, const std::string& base) {
  const auto entries = files.entries(base);
  if (!entries) return;
  for (const auto& [name, isFolder] : *entries) {
    const std::string path = base + name;
    if (!isFolder || !hasScratchName(name) || !isScratchFolder(files, path)) continue;
    const auto abandoned = platform::LockFile::takeOver(lockOf(files.drives().toHost(path).value_or("")));
    if (abandoned && removeScratch(files, path))
      log.append(" Removed what an ended run left behind: " + path);
  }
}

std::string windowsForm(const std::string& hostBelow) {
  std::string path;
  for (std::size_t begin = 0; begin <= hostBelow.size();) {
    const std::size_t end = std::min(hostBelow.find('/', begin), hostBelow.size());
    path += '\\' + platform::holdName(hostBelow.substr(begin, end - begin));
    begin = end + 1;
  }
  return path;
}

}  // namespace

bool isScratchOnHost(const std::string& hostPath) {
  return hasScratchName(std::string_view(hostPath).substr(hostPath.rfind('/') + 1)) &&
         isOwn(hostPath, S_IFDIR) && isOwn(lockOf(hostPath), S_IFREG);
}

ScratchFolder::ScratchFolder(const platform::Files& files, runtime::Log& log, const std::string& base)
    : files_(files), log_(log) {
  sweep(files, log, base);
  const std::string stem = base + std::string(prefix) + runtime::timeOfDay("");
  for (int i = 0; i < mostAttempts; ++i) {
    const std::string number = i == 0 ? "" : "-" + std::to_string(i);
    if (make(stem + number + std::string(suffix)) || systemError_ != EEXIST) return;
  }
}

bool ScratchFolder::make(const std::string& path) {
  systemError_ = files_.createFolderExclusively(path);
  if (systemError_ != 0) return false;
  lock_ = platform::LockFile::make(lockOf(files_.drives().toHost(path).value_or("")));
  const int failed = errno;
  if (lock_) {
    path_ = path;
    return true;
  }
  systemError_ = files_.folderExists(path) ? failed : EEXIST;
  files_.deleteTree(path);
  return false;
}

ScratchFolder::~ScratchFolder() {
  if (!path_.empty() && !removeScratch(files_, path_)) log_.append(" Unable to remove folder: " + path_);
}

bool isScratchFolder(const platform::Files& files, const std::string& path) {
  return isScratchOnHost(files.drives().toHost(path).value_or(""));
}

std::vector<std::string> scratchFoldersBelow(const platform::Files& files, const std::string& folder,
                                             const platform::Stop& stop) {
  std::vector<std::string> found;
  const std::string host = files.drives().toHost(folder).value_or("");
  platform::walkFolders(host, stop, [&](const std::string& below) {
    const bool scratch = isScratchOnHost(host + '/' + below);
    if (scratch) found.push_back(runtime::withoutTrailingBackslash(folder) + windowsForm(below));
    return !scratch;
  });
  return found;
}

}  // namespace archive
