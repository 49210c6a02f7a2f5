#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "platform/DeleteTree.h"
#include "platform/Descriptor.h"
#include "platform/HeldName.h"

namespace platform {
namespace {

constexpr std::size_t blockSize = 64 * 1024;
constexpr mode_t permissionBits = 0777;
constexpr mode_t allModeBits = 07777;

using Folder = std::unique_ptr<DIR, int (*)(DIR*)>;

Folder openFolder(const std::string& host) { return Folder(opendir(host.c_str()), closedir); }

std::optional<struct stat> statusOf(const std::string& host, int flags = 0) {
  struct stat status {};
  if (fstatat(AT_FDCWD, host.c_str(), &status, flags) != 0) return std::nullopt;
  return status;
}

std::optional<struct stat> statusOf(const std::optional<std::string>& host, int flags = 0) {
  return host ? statusOf(*host, flags) : std::nullopt;
}

/// 0, or the system's error.
int copyBytes(RegularFile& from, int to, const Stop& stop) {
  std::array<char, blockSize> buffer;
  while (!stop.requested()) {
    const std::optional<std::size_t> count = from.read(buffer.data(), buffer.size());
    if (!count) return errno;
    if (*count == 0) return 0;
    if (!writeAll(to, std::string_view(buffer.data(), *count))) return errno;
  }
  return ECANCELED;
}

/// Bits that lend the owner's rights go with the owner only.
bool giveMode(int file, const RegularFile& from) {
  struct stat status {};
  if (fstat(file, &status) != 0) return false;
  const bool sameOwner = status.st_uid == from.owner() && status.st_gid == from.group();
  return fchmod(file, from.mode() & (sameOwner ? allModeBits : permissionBits)) == 0;
}

/// 0, or the system's error.
int copyInto(RegularFile& from, const Replacement& copy, bool withOwner, const Stop& stop) {
  if (const int error = copyBytes(from, copy.get(), stop); error != 0) return error;
  // Who may not give files away keeps the copy.
  if (withOwner) static_cast<void>(fchown(copy.get(), from.owner(), from.group()) == 0);
  return giveMode(copy.get(), from) ? 0 : errno;
}

bool isFolderEntry(int folder, const dirent& entry) {
  if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat status {};
  return fstatat(folder, entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

/// Whether the folder lists exactly this name: a file system may find a name whose case differs.
bool listsExactly(const std::string& host, std::string_view name) {
  const Folder folder = openFolder(host);
  if (!folder) return true;  // a folder that may be entered but not read cannot say
  while (const dirent* const entry = readdir(folder.get())) {
    if (name == entry->d_name) return true;
  }
  return false;
}

}  // namespace

bool Files::fileExists(std::string_view path) const {
  const auto status = statusOf(drives_.toHost(path));
  return status && !S_ISDIR(status->st_mode);
}

bool Files::isRegularFile(std::string_view path) const {
  const auto status = statusOf(drives_.toHost(path));
  return status && S_ISREG(status->st_mode);
}

bool Files::folderExists(std::string_view path) const {
  const auto status = statusOf(drives_.toHost(path));
  return status && S_ISDIR(status->st_mode);
}

bool Files::entryExists(std::string_view path) const {
  return statusOf(drives_.toHost(path), AT_SYMLINK_NOFOLLOW).has_value();
}

bool Files::isSpecial(std::string_view path) const {
  const auto status = statusOf(drives_.toHost(path));
  return status && !S_ISREG(status->st_mode) && !S_ISDIR(status->st_mode);
}

std::optional<std::uint64_t> Files::fileSize(std::string_view path) const {
  const auto status = statusOf(drives_.toHost(path));
  if (!status || S_ISDIR(status->st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status->st_size);
}

std::optional<std::time_t> Files::modifiedTime(std::string_view path) const {
  const auto status = statusOf(drives_.toHost(path));
  if (!status) return std::nullopt;
  return status->st_mtime;
}

bool Files::isLink(std::string_view path) const {
  const auto status = statusOf(drives_.toHost(path), AT_SYMLINK_NOFOLLOW);
  return status && S_ISLNK(status->st_mode);
}

std::string Files::fullName(std::string_view path) const {
  const std::optional<std::string> host = drives_.toHost(path);
  if (drives_.isRoot(path) || !statusOf(host, AT_SYMLINK_NOFOLLOW)) return "";
  const std::size_t slash = host->find_last_of('/');
  const std::string name = host->substr(slash + 1);
  if (name.empty() || name == ".." || !listsExactly(host->substr(0, slash + 1), name)) return "";
  return holdName(name);
}

int Files::createFolder(std::string_view path) const {
  const int problem = createFolderExclusively(path, 0777);
  return problem != 0 && folderExists(path) ? 0 : problem;
}

int Files::createFolderExclusively(std::string_view path, mode_t mode) const {
  const std::optional<std::string> host = drives_.toHost(path);
  if (!host) return ENOENT;
  return mkdir(host->c_str(), mode) == 0 ? 0 : errno;
}

int Files::writeProblem(std::string_view folder) const {
  const std::optional<std::string> host = drives_.toHost(folder);
  const auto status = statusOf(host);
  if (!host) return ENOENT;
  if (!status) return errno;
  if (!S_ISDIR(status->st_mode)) return ENOTDIR;
  if (faccessat(AT_FDCWD, host->c_str(), W_OK | X_OK, AT_EACCESS) != 0) return errno;
  struct statvfs space {};
  if (statvfs(host->c_str(), &space) != 0) return 0;
  // A file system that counts neither blocks nor files says nothing of them.
  const bool noBytes = space.f_blocks > 0 && (geteuid() == 0 ? space.f_bfree : space.f_bavail) == 0;
  const bool noFiles = space.f_files > 0 && space.f_ffree == 0;
  return noBytes || noFiles ? ENOSPC : 0;
}

bool Files::deleteFile(std::string_view path) const {
  const std::optional<std::string> host = drives_.toHost(path);
  return host && unlink(host->c_str()) == 0;
}

bool Files::rename(std::string_view from, std::string_view to) const {
  const std::optional<std::string> source = drives_.toHost(from);
  const std::optional<std::string> target = drives_.toHost(to);
  return source && target && ::rename(source->c_str(), target->c_str()) == 0;
}

int Files::copyFile(std::string_view from, std::string_view to, const Stop& stop) const {
  const std::optional<std::string> target = drives_.toHost(to);
  if (!target) return ENOENT;
  RegularFile file = openFile(from);
  if (!file) return errno;
  Replacement copy(*target, S_IRUSR | S_IWUSR);
  if (!copy) return errno;
  const int failed = copyInto(file, copy, false, stop);
  return failed == 0 ? copy.commit(Existing::Replaced) : failed;
}

int Files::moveFile(std::string_view from, std::string_view to, Existing existing, const Stop& stop) const {
  const std::optional<std::string> source = drives_.toHost(from);
  const std::optional<std::string> target = drives_.toHost(to);
  if (!source || !target) return ENOENT;
  const bool spares = existing == Existing::Spared;
  const int error = spares                                            ? moveUnlessTaken(*source, *target)
                    : ::rename(source->c_str(), target->c_str()) == 0 ? 0
                                                                      : errno;
  if (error != EXDEV) return error;
  RegularFile file(*source);
  if (!file) return errno;
  Replacement copy(*target, S_IRUSR | S_IWUSR);
  if (!copy) return errno;
  if (const int failed = copyInto(file, copy, true, stop); failed != 0) return failed;
  if (stop.requested()) return ECANCELED;
  const int placed = copy.commit(existing);
  if (placed == 0) unlink(source->c_str());
  return placed;
}

bool Files::deleteTree(std::string_view path) const {
  const std::optional<std::string> host = drives_.toHost(path);
  if (!host) return false;
  const bool isDrive = std::any_of(drives_.drives().begin(), drives_.drives().end(),
                                   [&host](const auto& drive) { return drive.hostFolder == *host; });
  return !isDrive && deleteHostTree(*host);
}

bool Files::writeText(std::string_view path, std::string_view bytes) const {
  const std::optional<std::string> host = drives_.toHost(path);
  if (!host) return false;
  Replacement file(*host, 0666);
  if (!file || !writeAll(file.get(), bytes)) return false;
  const std::optional<struct stat>& old = file.replaced();
  if (old && S_ISREG(old->st_mode) && fchmod(file.get(), old->st_mode & allModeBits) != 0) return false;
  return file.commit();
}

RegularFile Files::openFile(std::string_view path) const {
  return RegularFile(drives_.toHost(path).value_or(""));
}

std::optional<std::string> Files::readBytes(std::string_view path, std::size_t most) const {
  RegularFile file = openFile(path);
  if (!file) return std::nullopt;
  std::string bytes;
  std::array<char, blockSize> buffer;
  while (bytes.size() < most) {
    const auto count = file.read(buffer.data(), std::min(buffer.size(), most - bytes.size()));
    if (!count) return std::nullopt;
    if (*count == 0) break;
    bytes.append(buffer.data(), *count);
  }
  return bytes;
}

int Files::readProblem(std::string_view folder) const {
  const std::optional<std::string> host = drives_.toHost(folder);
  if (!host) return ENOENT;
  errno = 0;
  return openFolder(*host) ? 0 : errno;
}

std::optional<std::vector<Files::Entry>> Files::entries(std::string_view path) const {
  const std::optional<std::string> host = drives_.toHost(path);
  if (!host) return std::nullopt;
  const Folder folder = openFolder(*host);
  if (!folder) return std::nullopt;
  std::vector<Entry> found;
  errno = 0;
  while (const dirent* const entry = readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..")
      found.push_back({holdName(name), isFolderEntry(dirfd(folder.get()), *entry)});
    errno = 0;
  }
  if (errno != 0) return std::nullopt;
  std::sort(found.begin(), found.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
  return found;
}

std::string extensionOf(std::string_view name) {
  const std::size_t dot = name.find_last_of(".\\");
  return dot == name.npos || name[dot] == '\\' ? "" : std::string(name.substr(dot + 1));
}

std::string temporaryFolder(const DriveTable& drives) {
  const char* const named = std::getenv("TMPDIR");
  std::string folder = drives.toWindows(named != nullptr && *named == '/' ? named : "/tmp");
  if (folder.back() != '\\') folder += '\\';
  return folder;
}

std::string longName(const Files& files, std::string_view path) {
  return files.entryExists(path) ? std::string(path) : std::string();
}

}  // namespace platform
