#include "platform/Caller.h"

#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

/// It can only be asked by setting it. Belongs to the thread of the windows, which alone makes files.
unsigned currentUmask() {
  const mode_t mask = umask(077);
  umask(mask);
  return mask;
}

std::vector<unsigned> currentGroups() {
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
  groups.resize(
      static_cast<std::size_t>(std::max(0, getgroups(static_cast<int>(groups.size()), groups.data()))));
  groups.push_back(getegid());
  return {groups.begin(), groups.end()};
}

}  // namespace

Caller caller() { return {geteuid() == 0, geteuid(), currentGroups(), currentUmask()}; }

}  // namespace platform
