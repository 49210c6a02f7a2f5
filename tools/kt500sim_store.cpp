#include "tools/kt500sim_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

namespace kt500sim {
namespace {

constexpr mode_t folderMode = 0755;

platform::Descriptor openFolder(int at, const std::string& name, bool followLink) {
  const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (followLink ? 0 : O_NOFOLLOW);
  return platform::Descriptor(openat(at, name.c_str(), flags));
}

platform::Descriptor makeFolder(int at, const std::string& name) {
  mkdirat(at, name.c_str(), folderMode);  // one that is there is fine
  return openFolder(at, name, false);
}

std::string absolute(const std::string& folder) {
  char path[PATH_MAX];
  return realpath(folder.c_str(), path) != nullptr ? path : folder;
}

}  // namespace

Store::Store(const std::string& folder) {
  mkdir(folder.c_str(), folderMode);
  folder_ = absolute(folder);
  root_ = openFolder(AT_FDCWD, folder_, true);
}

std::uint64_t Store::bytesLeft() const {
  struct statvfs status {};
  return fstatvfs(root_.get(), &status) == 0 ? std::uint64_t{status.f_bavail} * status.f_frsize : 0;
}

std::string Store::homeOf(const std::string& account) const {
  const platform::Descriptor homes = makeFolder(root_.get(), "home");
  return homes && makeFolder(homes.get(), account) ? folder_ + "/home/" + account : "";
}

std::string Store::newFolder() const {
  std::string path = folder_ + "/.installing-XXXXXX";
  return mkdtemp(path.data()) != nullptr ? path : "";
}

IncomingFile::IncomingFile(const Store& store) : store_(store) {
  for (int i = 0; !file_; ++i) {
    name_ = ".incoming-" + std::to_string(getpid()) + "-" + std::to_string(i);
    file_ =
        platform::Descriptor(openat(store.root_.get(), name_.c_str(),
                                    O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file_ && errno != EEXIST) return;
  }
}

IncomingFile::~IncomingFile() {
  if (file_) unlinkat(store_.root_.get(), name_.c_str(), 0);
}

bool IncomingFile::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file_.get(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

platform::Descriptor IncomingFile::reader() const {
  return platform::Descriptor(openat(store_.root_.get(), name_.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
}

bool IncomingFile::keepAs(const std::string& name, mode_t mode) {
  const int root = store_.root_.get();
  if (fchmod(file_.get(), mode) != 0 || renameat(root, name_.c_str(), root, name.c_str()) != 0) return false;
  return file_.closeNow();
}

}  // namespace kt500sim
