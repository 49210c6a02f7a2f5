#include "platform/CopyAttributes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

namespace platform {
namespace {

struct Pair {
  std::optional<std::string> target;
  struct stat source {};
};

/// Without a target when one of the two names nothing.
Pair lookUp(const DriveTable& drives, std::string_view from, std::string_view to) {
  Pair pair;
  const std::optional<std::string> source = drives.toHost(from);
  if (source && stat(source->c_str(), &pair.source) == 0) pair.target = drives.toHost(to);
  return pair;
}

}  // namespace

bool copyModeAndOwner(const DriveTable& drives, std::string_view from, std::string_view to) {
  const Pair pair = lookUp(drives, from, to);
  if (!pair.target) return false;
  constexpr mode_t permissions = 0777;
  const char* const target = pair.target->c_str();
  const bool owned = chown(target, pair.source.st_uid, pair.source.st_gid) == 0;
  // Bits that lend the owner's rights must not pass to another owner.
  return chmod(target, pair.source.st_mode & (owned ? 07777 : permissions)) == 0;
}

bool copyTimes(const DriveTable& drives, std::string_view from, std::string_view to) {
  const Pair pair = lookUp(drives, from, to);
  const std::array<timespec, 2> times = {pair.source.st_atim, pair.source.st_mtim};
  return pair.target && utimensat(AT_FDCWD, pair.target->c_str(), times.data(), 0) == 0;
}

}  // namespace platform
