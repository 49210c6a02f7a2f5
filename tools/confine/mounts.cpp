#include "tools/confine/mounts.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <optional>

#include "platform/Descriptor.h"

namespace confine {
namespace {

using platform::Descriptor;

constexpr unsigned wholeTree = AT_RECURSIVE;

/// A copy of what is mounted at a path and below, as it was before anything was closed.
struct Tree {
  std::string path;
  Descriptor copy;
};

bool addFlags(int tree, const char* path, unsigned flags) {
  mount_attr change{};
  change.attr_set = flags;
  return mount_setattr(tree, path, AT_EMPTY_PATH | wholeTree, &change, sizeof change) == 0;
}

std::optional<Tree> copyTree(const std::string& path) {
  Tree tree{path,
            Descriptor(open_tree(AT_FDCWD, path.c_str(), OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | wholeTree))};
  if (!tree.copy) return std::nullopt;
  return tree;
}

/// A folder of the run: root may make device files there, and they would lead to the disk itself.
std::optional<Tree> copyFolder(const std::string& path) {
  std::optional<Tree> tree = copyTree(path);
  if (tree && !addFlags(tree->copy.get(), "", MOUNT_ATTR_NODEV)) return std::nullopt;
  return tree;
}

/// By descriptor: a link that is put into the way by now would lead the mount elsewhere.
bool putBack(const Tree& tree) {
  const Descriptor place(open(tree.path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  return place && move_mount(tree.copy.get(), "", place.get(), "",
                             MOVE_MOUNT_F_EMPTY_PATH | MOVE_MOUNT_T_EMPTY_PATH) == 0;
}

}  // namespace

bool closeMounts(const std::vector<std::string>& folders) {
  // First, or what is mounted here would be mounted for everybody.
  if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
  std::array<char, PATH_MAX> current{};
  if (getcwd(current.data(), current.size()) == nullptr) return false;
  std::vector<Tree> trees;
  for (const std::string& folder : folders) {
    std::optional<Tree> tree = copyFolder(folder);
    if (!tree) return false;
    trees.push_back(std::move(*tree));
  }
  for (const char* const device :
       {"/dev/null", "/dev/tty"})  // behind /dev, should that be a folder of the run
    if (std::optional<Tree> tree = copyTree(device)) trees.push_back(std::move(*tree));
  if (!addFlags(AT_FDCWD, "/", MOUNT_ATTR_RDONLY | MOUNT_ATTR_NODEV)) return false;
  for (const Tree& tree : trees)
    if (!putBack(tree)) return false;
  return chdir(current.data()) == 0;  // what it was lies below the mounts now
}

}  // namespace confine
