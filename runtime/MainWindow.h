#pragma once

#include <string>
#include <vector>

namespace runtime {

/// What a dialog needs from the main window. Paths are Windows paths.
class MainWindow {
 public:
  virtual ~MainWindow() = default;

  virtual void getDirPaneSelected() = 0;                        ///< rebuilds the selection list
  virtual std::vector<std::string> selectedPaths() const = 0;   ///< the selection list's valid entries
  virtual std::string selectionText() const = 0;                ///< what txtSelect shows
  virtual std::vector<std::string> paneItems() const = 0;       ///< names of all rows, in list order
  virtual std::string GetDir1Path() const = 0;                  ///< current folder, trailing backslash
  virtual void selectAllRows() = 0;                             ///< the action of "Select All"
  virtual void refreshKeepList() = 0;                           ///< lists again, keeping the selection
  virtual bool setOwnerShown() const = 0;                       ///< whether root may be offered as an owner
  virtual void netSetFile(const std::string& path) = 0;         ///< opens the network download for a file
  virtual void showfrmWDXOptions(const std::string& path) = 0;  ///< opens the serial download for a file
};

}  // namespace runtime
