#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "runtime/Services.h"

namespace Ui {
class frmGetOutFolder;
}

namespace archive {

/// Chooses the output folder where the desktop offers no folder picker.
class frmGetOutFolder : public QDialog {
  Q_OBJECT

 public:
  /// `startFolder` is shown first; one that is not there: the first drive.
  frmGetOutFolder(runtime::Services services, const std::string& startFolder, QWidget* parent = nullptr);
  ~frmGetOutFolder() override;

  const std::string& chosen() const { return chosen_; }  ///< empty: cancelled
  std::string GetDirListPath() const;                    ///< the folder list's path, trailing backslash

 private:
  void Drive1_Change();
  void cmdNewFolder_Click();
  void cmdOK_Click();

  runtime::Services services_;
  std::unique_ptr<Ui::frmGetOutFolder> ui_;
  std::string chosen_;
};

/// Whether a folder may have this name: it holds none of \ / : * ? " < > |, neither as they are nor held.
bool isFolderName(const std::string& name);

}  // namespace archive
