#include "platform/FolderWalk.h"

#include <memory>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/EntryKind.h"

namespace platform {
namespace {

constexpr int asFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

}  // namespace

void walkFolders(const std::string& folder, const Stop& stop,
                 const std::function<bool(const std::string& below)>& enter) {
  const Descriptor root(open(folder.c_str(), asFolder));
  if (!root) return;
  std::vector<std::string> pending = {""};
  while (!pending.empty() && !stop.requested()) {
    const std::string below = std::move(pending.back());
    pending.pop_back();
    const int opened = openat(root.get(), below.empty() ? "." : below.c_str(), asFolder);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opened < 0 ? nullptr : fdopendir(opened), closedir);
    while (const dirent* const entry = listing ? readdir(listing.get()) : nullptr) {
      const std::string_view name = entry->d_name;
      if (name == "." || name == ".." || entryKind(opened, *entry) != DT_DIR) continue;
      std::string path = below.empty() ? std::string(name) : below + '/' + std::string(name);
      if (enter(path)) pending.push_back(std::move(path));
    }
  }
}

}  // namespace platform
