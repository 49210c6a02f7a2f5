#include "platform/RegularFile.h"

#include <fcntl.h>

#include "platform/Replacement.h"

namespace platform {

RegularFile::RegularFile(const std::string& hostPath)
    : file_(open(hostPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  if (fstat(file_.get(), &status_) != 0 || !S_ISREG(status_.st_mode)) file_ = Descriptor();
}

std::optional<std::uint64_t> RegularFile::size() const {
  struct stat now {};
  if (fstat(file_.get(), &now) != 0) return std::nullopt;
  return static_cast<std::uint64_t>(now.st_size);
}

std::optional<std::size_t> RegularFile::read(char* to, std::size_t most) {
  return readSome(file_.get(), to, most);
}

}  // namespace platform
