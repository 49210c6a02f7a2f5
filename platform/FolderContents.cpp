#include "platform/FolderContents.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>

#include "platform/HeldName.h"

namespace platform {
namespace {

/// Some file systems do not tell it with the name.
unsigned char kindOf(int folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type;
  struct stat status {};
  if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) return DT_UNKNOWN;
  return static_cast<unsigned char>(IFTODT(status.st_mode));
}

}  // namespace

std::optional<FolderContents> contentsOf(const DriveTable& drives, std::string_view folder) {
  const std::optional<std::string> host = drives.toHost(folder);
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(host ? opendir(host->c_str()) : nullptr, closedir);
  if (!listing) return std::nullopt;
  FolderContents found;
  while (const dirent* const entry = readdir(listing.get())) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    const unsigned char kind = kindOf(dirfd(listing.get()), *entry);
    if (kind == DT_DIR)
      found.folders.push_back(holdName(name));
    else if (kind != DT_LNK)
      found.others.push_back({holdName(name), kind == DT_REG});
  }
  return found;
}

}  // namespace platform
