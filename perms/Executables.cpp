#include "perms/Executables.h"

#include "platform/DirectorySearch.h"
#include "platform/FolderContents.h"
#include "runtime/IsExecutable.h"

namespace perms {
namespace {

/// The noted attributes are asked for last: that costs as much as the rest.
bool isListedExecutable(const platform::Files& files, const std::string& path, std::string_view name) {
  return !name.starts_with('.') && runtime::IsExecutable(files, path) &&
         !platform::isHiddenOrSystem(files.drives(), path);
}

}  // namespace

std::vector<std::string> findExecutables(const platform::Files& files, const std::string& folder,
                                         const std::function<bool()>& goesOn) {
  std::vector<std::string> found;
  std::vector<std::string> pending = {folder};
  while (!pending.empty()) {
    const std::string inside = std::move(pending.back()) + '\\';
    pending.pop_back();
    const auto contents = platform::contentsOf(files.drives(), inside);
    if (!contents) continue;
    for (const std::string& name : contents->others) {
      if (!goesOn()) return found;
      std::string path = inside + name;
      if (isListedExecutable(files, path, name)) found.push_back(std::move(path));
    }
    for (auto name = contents->folders.rbegin(); name != contents->folders.rend(); ++name)
      pending.push_back(inside + *name);
  }
  return found;
}

void markExecutables(const platform::Files& files, ItemTree& tree, const std::function<bool()>& goesOn) {
  for (TreeEntry& entry : tree) {
    if (!goesOn()) return;
    if (entry.isFolder) continue;
    const std::string_view path = entry.path;
    entry.isExecutable = isListedExecutable(files, entry.path, path.substr(path.rfind('\\') + 1));
  }
}

}  // namespace perms
