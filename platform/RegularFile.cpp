#include "platform/RegularFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/Replacement.h"

namespace platform {

RegularFile::RegularFile(const std::string& hostPath) {
  Descriptor file(open(hostPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file || fstat(file.get(), &status_) != 0) return;
  if (S_ISREG(status_.st_mode))
    file_ = std::move(file);
  else
    errno = EINVAL;
}

bool RegularFile::unchanged() const {
  struct stat now {};
  return fstat(file_.get(), &now) == 0 && now.st_size == status_.st_size &&
         now.st_mtim.tv_sec == status_.st_mtim.tv_sec && now.st_mtim.tv_nsec == status_.st_mtim.tv_nsec;
}

std::optional<std::size_t> RegularFile::read(char* to, std::size_t most) {
  return readSome(file_.get(), to, most);
}

std::optional<std::size_t> RegularFile::readAt(std::uint64_t place, char* to, std::size_t most) const {
  std::size_t done = 0;
  while (done < most) {
    const ssize_t got = pread(file_.get(), to + done, most - done, static_cast<off_t>(place + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

}  // namespace platform
