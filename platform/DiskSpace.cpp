#include "platform/DiskSpace.h"

#include <sys/statvfs.h>

namespace platform {

std::optional<DiskSpace> diskSpace(const std::string& hostFolder) {
  struct statvfs status {};
  if (statvfs(hostFolder.c_str(), &status) != 0 || status.f_blocks == 0) return std::nullopt;
  return DiskSpace{status.f_bavail * status.f_frsize, status.f_blocks * status.f_frsize};
}

}  // namespace platform
