#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "perms/PermissionPlan.h"
#include "runtime/Services.h"

namespace perms {

/// What stands on disk of one item: itself first, then all below, folders before what they hold. Links stand
/// nowhere in it. Empty when the item has vanished.
using ItemTree = std::vector<TreeEntry>;

/// The command that tells the modes of some quoted paths (each followed by a blank), and of all below them.
std::string treeModesCommand(const std::string& batch, bool below);

/// Reads what it prints (GNU findutils 4.9): records "DEPTH KIND MODE USER GROUP LINKS DEVICE INODE PATH"
/// that end in NUL, with "!" in front where a folder cannot be read or entered; between them complaints, a
/// line each, which begin with "find: ".
class TreeModesReader {
 public:
  /// The items in the order in which `find` got them, Windows paths.
  TreeModesReader(const platform::DriveTable& drives, const std::vector<std::string>& items);

  /// A whole output. `goesOn` is asked now and then; where it says no, the rest is not read.
  void read(std::string_view output, const std::function<bool()>& goesOn);
  std::vector<ItemTree> takeTrees() { return std::move(trees_); }  ///< one an item

 private:
  void readRecord(std::string_view record);
  bool beginItem(std::string_view hostPath);
  std::string pathBelow(std::string_view hostPath);

  const platform::DriveTable& drives_;
  const std::vector<std::string>& items_;
  std::vector<ItemTree> trees_;
  std::size_t next_ = 0;             ///< the item that may begin
  std::size_t hostLength_ = 0;       ///< of the item that has begun
  std::string hostFolder_, folder_;  ///< the latest folder, as find and as the program call it
};

/// Asks `find` for the trees of some items. Nothing where it was stopped, or could not run to its end.
std::optional<std::vector<ItemTree>> treesOf(const runtime::Services& services,
                                             const std::vector<std::string>& items, bool below);

}  // namespace perms
