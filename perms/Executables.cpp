#include "perms/Executables.h"

#include "platform/DirectorySearch.h"
#include "platform/FileStarts.h"
#include "platform/FolderContents.h"
#include "runtime/IsExecutable.h"

namespace perms {
namespace {

/// Asks of the files of a tree, those of one folder in a row.
class Test {
 public:
  explicit Test(const platform::Files& files) : drives_(files.drives()), starts_(files.drives()) {}

  /// The noted attributes are asked for last: that costs as much as the rest.
  bool isListedExecutable(std::string_view folder, std::string_view name, const std::string& path,
                          bool isRegular) {
    if (name.starts_with('.')) return false;
    const bool executable =
        runtime::IsExecutableName(path) ||
        (isRegular && runtime::startsAsExecutable(starts_.read(folder, name, runtime::executableStart)));
    return executable && !platform::isHiddenOrSystem(drives_, path);
  }

 private:
  const platform::DriveTable& drives_;
  platform::FileStarts starts_;
};

}  // namespace

std::vector<std::string> findExecutables(const platform::Files& files, const std::string& folder,
                                         const std::function<bool()>& goesOn) {
  Test test(files);
  std::vector<std::string> found;
  std::vector<std::string> pending = {folder};
  while (!pending.empty()) {
    const std::string inside = std::move(pending.back()) + '\\';
    pending.pop_back();
    const auto contents = platform::contentsOf(files.drives(), inside);
    if (!contents) continue;
    for (const auto& [name, isRegular] : contents->others) {
      if (!goesOn()) return found;
      std::string path = inside + name;
      if (test.isListedExecutable(inside, name, path, isRegular)) found.push_back(std::move(path));
    }
    for (auto name = contents->folders.rbegin(); name != contents->folders.rend(); ++name)
      pending.push_back(inside + *name);
  }
  return found;
}

void markExecutables(const platform::Files& files, ItemTree& tree, const std::function<bool()>& goesOn) {
  Test test(files);
  for (TreeEntry& entry : tree) {
    if (!goesOn()) return;
    if (entry.isFolder) continue;
    const std::string_view path = entry.path;
    const std::size_t nameAt = path.rfind('\\') + 1;
    entry.isExecutable =
        test.isListedExecutable(path.substr(0, nameAt), path.substr(nameAt), entry.path, entry.isRegular);
  }
}

}  // namespace perms
