#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace runtime {

/// What is selected in the file pane: a plain value, made anew from the rows after every change. An action
/// takes its copy once, at the click.
struct Selection {
  std::vector<std::string> selectedPaths;  ///< full Windows paths in list order
  std::size_t selectedCount() const { return selectedPaths.size(); }
};

}  // namespace runtime
