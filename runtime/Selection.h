#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace runtime {

/// What is selected in the file pane, as full Windows paths in list order. Rebuilt from the rows after every
/// change of the selection, never edited in place.
struct Selection {
  std::vector<std::string> selectedPaths = std::vector<std::string>(2501);  ///< grows when more are selected
  std::size_t selectedCount = 0;                                            ///< how many of them are valid

  std::vector<std::string> paths() const {
    return {selectedPaths.begin(), selectedPaths.begin() + static_cast<std::ptrdiff_t>(selectedCount)};
  }
};

}  // namespace runtime
