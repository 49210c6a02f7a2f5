#include "platform/FileStarts.h"

#include <fcntl.h>

#include "platform/HeldName.h"

namespace platform {

std::string_view FileStarts::read(std::string_view folder, std::string_view name, std::size_t most) {
  if (!opened_ || folder != folder_) {
    folder_ = folder;
    const auto host = drives_.toHost(folder);
    opened_ = Descriptor(host ? open(host->c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC) : -1);
  }
  const std::string hostName = releaseName(name);
  const Descriptor file(
      openat(opened_.get(), hostName.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
  bytes_.resize(most);
  const ssize_t got = ::read(file.get(), bytes_.data(), most);
  return std::string_view(bytes_).substr(0, got < 0 ? 0 : static_cast<std::size_t>(got));
}

}  // namespace platform
