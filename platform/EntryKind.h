#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace platform {

/// DT_DIR, DT_REG, DT_LNK.. of an entry of an open folder, a link never followed. Some file systems do not
/// tell it with the name.
inline unsigned char entryKind(int folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type;
  struct stat status {};
  if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) return DT_UNKNOWN;
  return static_cast<unsigned char>(IFTODT(status.st_mode));
}

}  // namespace platform
