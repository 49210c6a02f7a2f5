#pragma once

#include <string>
#include <vector>

#include "perms/ModeChanges.h"
#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace perms {

/// What takes a run back: each entry that it changed, or may have changed.
struct PermissionUndo {
  struct Entry {
    std::string path;
    Effect effect;
  };
  std::string folder;  ///< of the items, trailing backslash
  std::vector<Entry> entries;
  bool whole = true;  ///< the run went to its end, so that every entry has its last mode

  void add(ItemTree& tree, const std::vector<Effect>& effects);  ///< takes the paths
};

struct UndoResult {
  runtime::JobEnd end = runtime::JobEnd::Done;
  std::size_t restored = 0;
  std::size_t left = 0;  ///< changed since, gone, or refused by the system
};

/// Puts the modes back, what lies deepest first, and follows no link. What has its old mode does not count.
/// One line of the log says what was done.
class UndoJob {
 public:
  UndoJob(const runtime::Services& services, PermissionUndo undo);
  UndoResult run();

 private:
  runtime::Services services_;
  PermissionUndo undo_;
};

}  // namespace perms
