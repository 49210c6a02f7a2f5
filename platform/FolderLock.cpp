#include "platform/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

namespace platform {

FolderLock::FolderLock(const DriveTable& drives, std::string_view folder, std::chrono::milliseconds patience,
                       const std::function<bool()>& goesOn)
    : folder_(open(drives.toHost(folder).value_or("").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  constexpr std::chrono::milliseconds pause{10};
  const auto end = std::chrono::steady_clock::now() + patience;
  while (folder_ && !(held_ = flock(folder_.get(), LOCK_EX | LOCK_NB) == 0)) {
    if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() > end || !goesOn())
      return;
    std::this_thread::sleep_for(pause);
  }
}

}  // namespace platform
