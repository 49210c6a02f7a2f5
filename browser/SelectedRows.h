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

/// Rebuilds the selection list from the names of the selected rows of `folder` (trailing backslash).
SelectionCounts rebuildSelection(runtime::Selection& selection, const platform::Files& files,
                                 const std::string& folder, const std::vector<std::string>& names);

std::string summaryText(const SelectionCounts& counts);  ///< "3 items (2 files, 1 folders)"

}  // namespace browser
