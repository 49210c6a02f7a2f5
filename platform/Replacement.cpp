#include "platform/Replacement.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>

namespace platform {

namespace {

int renameNoReplace(const char* from, const char* to) {
  return renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}

int hardLink(const char* from, const char* to) { return link(from, to); }

}  // namespace

const MoveCalls systemMoveCalls = {renameNoReplace, hardLink};

/// Not every file system knows how to refuse, and not every one has links: then what stands there is looked
/// for just before.
int moveUnlessTaken(const std::string& from, const std::string& to, const MoveCalls& calls) {
  if (calls.renameUnlessTaken(from.c_str(), to.c_str()) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  if (calls.linkTo(from.c_str(), to.c_str()) == 0) return unlink(from.c_str()) == 0 ? 0 : errno;
  if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS && errno != EMLINK) return errno;
  struct stat status {};
  if (lstat(to.c_str(), &status) == 0) return EEXIST;
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

std::optional<std::size_t> readSome(int file, char* buffer, std::size_t size) {
  ssize_t count = 0;
  do {
    count = read(file, buffer, size);
  } while (count < 0 && errno == EINTR);
  if (count < 0) return std::nullopt;
  return static_cast<std::size_t>(count);
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

Replacement::Replacement(const std::string& target, mode_t mode) : target_(target) {
  struct stat status {};
  if (lstat(target.c_str(), &status) == 0) replaced_ = status;
  // A folder cannot be replaced, and a device must not be.
  if (replaced_ && !S_ISREG(replaced_->st_mode) && !S_ISLNK(replaced_->st_mode)) {
    errno = EINVAL;
    return;
  }
  const std::string folder = target.substr(0, target.find_last_of('/') + 1);
  for (int i = 0; !file_; ++i) {
    name_ = folder + ".pakrune-" + std::to_string(getpid()) + "-" + std::to_string(i);
    file_ = Descriptor(open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (file_ || errno == EEXIST) continue;
    name_.clear();
    return;
  }
}

Replacement::~Replacement() {
  if (!name_.empty()) unlink(name_.c_str());
}

int Replacement::commit(Existing existing) {
  if (!file_.closeNow()) return errno;
  const int error = existing == Existing::Spared                    ? moveUnlessTaken(name_, target_)
                    : ::rename(name_.c_str(), target_.c_str()) == 0 ? 0
                                                                    : errno;
  if (error == 0) name_.clear();
  return error;
}

}  // namespace platform
