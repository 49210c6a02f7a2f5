#include "platform/DeleteTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Descriptor.h"

namespace platform {
namespace {

constexpr int asPlace = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr int asFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// A folder on the way down, known by its inode so that the way up cannot be led elsewhere.
struct Level {
  std::string name;
  dev_t device = 0;
  ino_t inode = 0;
  std::vector<std::string> folders;  ///< still to be removed
};

class TreeRemover {
 public:
  bool run(const std::string& parent, const std::string& name);

 private:
  bool step();
  bool enter(const std::string& name);
  bool leave();
  std::vector<std::string> removeFiles(int folder);

  Descriptor here_;
  std::vector<Level> levels_;
  bool complete_ = true;
};

bool TreeRemover::run(const std::string& parent, const std::string& name) {
  here_ = Descriptor(open(parent.c_str(), asPlace));
  struct stat status {};
  if (!here_ || fstatat(here_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  if (!S_ISDIR(status.st_mode)) return unlinkat(here_.get(), name.c_str(), 0) == 0;
  if (fstat(here_.get(), &status) != 0) return false;
  levels_.push_back({"", status.st_dev, status.st_ino, {name}});
  while (levels_.size() > 1 || !levels_.front().folders.empty()) {
    if (!step()) return false;
  }
  return complete_;
}

/// False when the place in the tree is lost and nothing more can be done safely.
bool TreeRemover::step() {
  std::vector<std::string>& folders = levels_.back().folders;
  if (folders.empty()) return leave();
  const std::string name = std::move(folders.back());
  folders.pop_back();
  if (!enter(name)) complete_ = false;
  return true;
}

bool TreeRemover::enter(const std::string& name) {
  Descriptor folder(openat(here_.get(), name.c_str(), asFolder));
  if (!folder && errno == EACCES) {
    if (fchmodat(here_.get(), name.c_str(), S_IRWXU, AT_SYMLINK_NOFOLLOW) != 0) return false;
    folder = Descriptor(openat(here_.get(), name.c_str(), asFolder));
  }
  struct stat status {};
  if (!folder || fstat(folder.get(), &status) != 0) return false;
  // Where this fails the removals inside fail too, and are counted there.
  if ((status.st_mode & S_IRWXU) != S_IRWXU) static_cast<void>(fchmod(folder.get(), S_IRWXU));
  levels_.push_back({name, status.st_dev, status.st_ino, removeFiles(folder.get())});
  here_ = std::move(folder);
  return true;
}

bool TreeRemover::leave() {
  const std::string name = std::move(levels_.back().name);
  levels_.pop_back();
  Descriptor above(openat(here_.get(), "..", asPlace));
  struct stat status {};
  if (!above || fstat(above.get(), &status) != 0) return false;
  if (status.st_dev != levels_.back().device || status.st_ino != levels_.back().inode) return false;
  here_ = std::move(above);
  if (unlinkat(here_.get(), name.c_str(), AT_REMOVEDIR) != 0) complete_ = false;
  return true;
}

/// Removes all but the folders, whose names it returns.
std::vector<std::string> TreeRemover::removeFiles(int folder) {
  std::vector<std::string> names;
  const int copy = openat(folder, ".", asFolder);
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(copy < 0 ? nullptr : fdopendir(copy), closedir);
  if (!listing) {
    if (copy >= 0) close(copy);
    complete_ = false;
    return names;
  }
  while (const dirent* const entry = readdir(listing.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  std::vector<std::string> folders;
  for (std::string& name : names) {
    if (unlinkat(folder, name.c_str(), 0) == 0) continue;
    struct stat status {};
    const bool found = fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (found && S_ISDIR(status.st_mode))
      folders.push_back(std::move(name));
    else
      complete_ = false;
  }
  return folders;
}

}  // namespace

bool deleteHostTree(const std::string& hostPath) {
  const std::size_t slash = hostPath.find_last_of('/');
  if (slash == std::string::npos) return false;
  const std::string name = hostPath.substr(slash + 1);
  if (name.empty() || name == "." || name == "..") return false;
  return TreeRemover().run(hostPath.substr(0, slash + 1), name);
}

}  // namespace platform
