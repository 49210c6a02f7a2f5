#include "platform/FolderContents.h"

#include <memory>

#include "platform/EntryKind.h"
#include "platform/HeldName.h"

namespace platform {
std::optional<FolderContents> contentsOf(const DriveTable& drives, std::string_view folder) {
  const std::optional<std::string> host = drives.toHost(folder);
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(host ? opendir(host->c_str()) : nullptr, closedir);
  if (!listing) return std::nullopt;
  FolderContents found;
  while (const dirent* const entry = readdir(listing.get())) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    const unsigned char kind = entryKind(dirfd(listing.get()), *entry);
    if (kind == DT_DIR)
      found.folders.push_back(holdName(name));
    else if (kind != DT_LNK)
      found.others.push_back({holdName(name), kind == DT_REG});
  }
  return found;
}

}  // namespace platform
