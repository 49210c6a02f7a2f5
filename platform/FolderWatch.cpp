#include "platform/FolderWatch.h"

#include <sys/inotify.h>

#include <array>
#include <cstring>

namespace platform {
namespace {

constexpr std::uint32_t changes = IN_CREATE | IN_DELETE | IN_CLOSE_WRITE | IN_ATTRIB | IN_MOVED_FROM |
                                  IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

}  // namespace

FolderWatch::FolderWatch() : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

void FolderWatch::follow(const std::string& hostFolder) {
  if (folder_ >= 0) inotify_rm_watch(events_.get(), folder_);
  folder_ = inotify_add_watch(events_.get(), hostFolder.c_str(), changes);
  heard();
}

bool FolderWatch::heard() {
  bool any = false;
  alignas(inotify_event) std::array<char, 16384> bytes;
  for (ssize_t got; (got = read(events_.get(), bytes.data(), bytes.size())) > 0;) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
      inotify_event event;
      std::memcpy(&event, &bytes[at], sizeof event);
      const bool lost = (event.mask & IN_Q_OVERFLOW) != 0;
      any |= lost || (event.wd == folder_ && (event.mask & IN_IGNORED) == 0);
      at += sizeof event + event.len;
    }
  }
  return any;
}

}  // namespace platform
