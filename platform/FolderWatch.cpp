#include "platform/FolderWatch.h"

#include <sys/inotify.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace platform {
namespace {

constexpr std::uint32_t changes = IN_CREATE | IN_DELETE | IN_CLOSE_WRITE | IN_ATTRIB | IN_MOVED_FROM |
                                  IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
/// A link on the way may lead to a folder that is watched already: then both are heard of.
constexpr std::uint32_t changesAbove = IN_DELETE | IN_MOVED_FROM | IN_ATTRIB | IN_ONLYDIR | IN_MASK_ADD;

}  // namespace

FolderWatch::FolderWatch() : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

/// The folder itself does not tell that one above it moves, that it goes while another program stands in it,
/// or that it can be read from now on.
void FolderWatch::follow(const std::string& hostFolder) {
  for (const Watched& one : watched_) inotify_rm_watch(events_.get(), one.number);
  watched_ = {{inotify_add_watch(events_.get(), hostFolder.c_str(), changes), {}}};
  for (std::string way = hostFolder; way.size() > 1;) {
    const std::size_t slash = way.rfind('/');
    std::string name = way.substr(slash + 1);
    way.resize(std::max<std::size_t>(slash, 1));
    watched_.push_back({inotify_add_watch(events_.get(), way.c_str(), changesAbove), std::move(name)});
  }
  heard();
}

bool FolderWatch::heard() {
  bool any = false;
  alignas(inotify_event) std::array<char, 16384> bytes;
  for (ssize_t got; (got = read(events_.get(), bytes.data(), bytes.size())) > 0;) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
      inotify_event event;
      std::memcpy(&event, &bytes[at], sizeof event);
      any |= concerns(event, event.len == 0 ? "" : &bytes[at + sizeof event]);
      at += sizeof event + event.len;
    }
  }
  return any;
}

bool FolderWatch::concerns(const inotify_event& event, std::string_view name) const {
  if ((event.mask & IN_Q_OVERFLOW) != 0) return true;
  if ((event.mask & IN_IGNORED) != 0) return false;
  return std::any_of(watched_.begin(), watched_.end(), [&event, name](const Watched& one) {
    return one.number == event.wd && (one.entry.empty() || one.entry == name);
  });
}

}  // namespace platform
