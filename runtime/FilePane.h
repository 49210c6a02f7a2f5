#pragma once

#include <string>
#include <vector>

namespace runtime {

/// What a dialog needs from the file pane. Paths are Windows paths.
class FilePane {
 public:
  virtual ~FilePane() = default;

  virtual std::vector<std::string> selectedPaths()
      const = 0;                                           ///< full paths of the selected rows, in list order
  virtual std::string selectionText() const = 0;           ///< what txtSelect shows
  virtual std::vector<std::string> paneItems() const = 0;  ///< names of all rows, in list order
  virtual std::string GetDir1Path() const = 0;             ///< current folder, trailing backslash
  virtual void selectAllRows() = 0;                        ///< the action of "Select All"
  virtual void refreshKeepList() = 0;                      ///< lists again, keeping the selection
  virtual void showEntry(const std::string& path) = 0;  ///< its row, if any, is the current one and in view
  virtual bool setOwnerShown() const = 0;               ///< whether root may be offered as an owner
};

}  // namespace runtime
