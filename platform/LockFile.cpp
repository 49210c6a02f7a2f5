#include "platform/LockFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

namespace platform {
namespace {

bool stillStands(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 && status.st_nlink > 0;
}

bool isOwnFile(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

}  // namespace

LockFile LockFile::make(const std::string& path) {
  Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!file) return {};
  // Whoever was quicker with the lock takes the file away.
  while (flock(file.get(), LOCK_EX) != 0 && errno == EINTR) continue;
  return stillStands(file.get()) ? LockFile(std::move(file)) : LockFile();
}

LockFile LockFile::takeOver(const std::string& path) {
  Descriptor file(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  const bool taken = file && isOwnFile(file.get()) && flock(file.get(), LOCK_EX | LOCK_NB) == 0;
  return taken && stillStands(file.get()) ? LockFile(std::move(file)) : LockFile();
}

}  // namespace platform
