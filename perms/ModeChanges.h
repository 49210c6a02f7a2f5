#pragma once

#include <string>
#include <vector>

#include "perms/TreeModes.h"

namespace perms {

/// What a plan makes of one entry's mode, all twelve bits.
struct Effect {
  unsigned before = 0;
  unsigned between = 0;  ///< after the first step that reaches it
  unsigned after = 0;
};

/// The effects on all entries of the trees, one list an item; `plans` has one plan an item. The names of one
/// file share what becomes of it.
std::vector<std::vector<Effect>> effectsOf(const std::vector<ItemTree>& trees,
                                           const std::vector<ItemPlan>& plans,
                                           const platform::Caller& caller);

/// An entry whose mode a run would change.
struct ModeChange {
  std::string path;
  bool isFolder = false;
  unsigned before = 0;
  unsigned after = 0;
  enum class Note { None, ToBeOpened, MaybeExecutable } note = Note::None;

  std::string text() const;  ///< "rwxr-xr-x -> rw-r--r--", and what is not known yet
};

/// Folders first, each kind in the order of the tree.
struct ModeChanges {
  std::vector<ModeChange> list;
  std::size_t unchanged = 0;
  std::size_t foreign = 0;  ///< of these: belong to somebody else, so the caller cannot change them

  std::string countText() const;
};
ModeChanges changesOf(std::vector<ItemTree> trees, const std::vector<ItemPlan>& plans,
                      const platform::Caller& caller);

}  // namespace perms
