#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "runtime/Selection.h"

namespace browser {

/// What a selection consists of. An entry that is no existing folder counts as a file.
struct SelectionCounts {
  std::size_t files = 0;
  std::size_t folders = 0;
};

struct SelectedEntry {
  std::string name;
  bool isFolder = false;  ///< when its folder was listed
};

/// Rebuilds the selection list from the selected rows of `folder` (trailing backslash). Few are looked up on
/// disk; of more than a hundred the list is believed, since that happens at each arrow key.
SelectionCounts rebuildSelection(runtime::Selection& selection, const platform::Files& files,
                                 const std::string& folder, const std::vector<SelectedEntry>& entries);

std::string summaryText(const SelectionCounts& counts);  ///< "3 items (2 files, 1 folders)"

}  // namespace browser
