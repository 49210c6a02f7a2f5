#include "browser/SizeWalk.h"

#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/EntryKind.h"

namespace browser {
namespace {

constexpr std::size_t openLevels = 32;

/// A folder on the way down. One far above is closed, and known by its inode when the way comes back to it.
struct Level {
  OpenFolder folder;
  std::vector<std::string> below;  ///< folders that are still to be counted
  dev_t device = 0;
  ino_t inode = 0;
};

class Walk {
 public:
  Walk(const platform::Stop& stop, const std::function<void(OpenFolder&)>& give) : stop_(stop), give_(give) {}
  std::uint64_t run(OpenFolder folder);

 private:
  void step();
  void enter(OpenFolder folder);
  void readEntries(Level& level);
  void closeFarAbove();
  void leave();

  const platform::Stop& stop_;
  const std::function<void(OpenFolder&)>& give_;
  std::vector<Level> levels_;
  std::uint64_t bytes_ = 0;
};

std::uint64_t Walk::run(OpenFolder folder) {
  enter(std::move(folder));
  while (!levels_.empty() && !stop_.requested()) step();
  return bytes_;
}

void Walk::step() {
  Level& level = levels_.back();
  if (level.below.empty()) return leave();
  const std::string name = std::move(level.below.back());
  level.below.pop_back();
  OpenFolder below = openFolder(dirfd(level.folder.get()), name.c_str(), O_NOFOLLOW);
  if (below) give_(below);
  if (below) enter(std::move(below));
}

void Walk::enter(OpenFolder folder) {
  levels_.push_back({std::move(folder), {}});
  readEntries(levels_.back());
  closeFarAbove();
}

void Walk::readEntries(Level& level) {
  const int folder = dirfd(level.folder.get());
  while (!stop_.requested()) {
    const dirent* const entry = readdir(level.folder.get());
    if (entry == nullptr) return;
    const std::string_view name = entry->d_name;
    const unsigned char kind = platform::entryKind(folder, *entry);
    struct stat status {};
    if (kind == DT_DIR && name != "." && name != "..")
      level.below.emplace_back(name);
    else if (kind == DT_REG && fstatat(folder, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
      bytes_ += static_cast<std::uint64_t>(status.st_size);
  }
}

void Walk::closeFarAbove() {
  if (levels_.size() <= openLevels) return;
  Level& level = levels_[levels_.size() - 1 - openLevels];
  struct stat status {};
  if (!level.folder || fstat(dirfd(level.folder.get()), &status) != 0) return;
  level.device = status.st_dev;
  level.inode = status.st_ino;
  level.folder.reset();
}

/// Where a folder was moved meanwhile, the way up leads elsewhere, and what is left above is given up.
void Walk::leave() {
  const OpenFolder left = std::move(levels_.back().folder);
  levels_.pop_back();
  if (levels_.empty() || levels_.back().folder) return;
  Level& level = levels_.back();
  level.folder = openFolder(dirfd(left.get()), "..");
  struct stat status {};
  const bool found = level.folder && fstat(dirfd(level.folder.get()), &status) == 0;
  if (!found || status.st_dev != level.device || status.st_ino != level.inode) levels_.clear();
}

}  // namespace

OpenFolder openFolder(int at, const char* name, int furtherFlags) {
  const int opened = openat(at, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | furtherFlags);
  return OpenFolder(opened < 0 ? nullptr : fdopendir(opened), closedir);
}

std::uint64_t sizeBelow(OpenFolder folder, const platform::Stop& stop,
                        const std::function<void(OpenFolder&)>& give) {
  return folder ? Walk(stop, give).run(std::move(folder)) : 0;
}

}  // namespace browser
