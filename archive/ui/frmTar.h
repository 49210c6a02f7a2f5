#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "archive/PackJob.h"
#include "archive/TarSelection.h"
#include "platform/desktop/Actions.h"
#include "platform/desktop/FilePickers.h"
#include "runtime/Downloads.h"
#include "runtime/FilePane.h"
#include "runtime/Services.h"

namespace Ui {
class frmTar;
}

namespace archive {

/// "Create Tar File". Modal; made for one request and one selection.
class frmTar : public QDialog {
  Q_OBJECT

 public:
  frmTar(const runtime::Services& services, runtime::FilePane& pane, runtime::Downloads& downloads,
         platform::desktop::FilePickers& pickers, PackSelection selection, QWidget* parent = nullptr);
  ~frmTar() override;

  /// Cancel, Escape and the close box: stop the job, and without one close the dialog.
  void reject() override;

 private:
  void Form_Load();
  void showFolderOption();
  void cmdGetOut_Click();
  void txtFileOut_Change();
  void cmdTar_Click();
  PackResult createArchive();
  std::vector<platform::desktop::Action> actions();
  std::string chooseOutput() const;
  bool readOutput();
  PackSettings settings() const;
  void handOver(const std::string& path);

  std::unique_ptr<Ui::frmTar> ui_;
  runtime::Services services_;
  runtime::FilePane& pane_;
  runtime::Downloads& downloads_;
  platform::desktop::FilePickers& pickers_;
  PackSelection selection_;
  bool stageUsr8_;  ///< as stored when the dialog was loaded
  platform::desktop::ActionTable* table_;
};

/// Puts a file on the clipboard, as file managers do. True when it is there.
bool ClipboardCopyFile(const platform::DriveTable& drives, const std::string& path);

/// The button "Create Tar File": checks the selection, asks before the whole folder is packed, and opens
/// frmTar modally. False when nothing was opened.
bool CheckTarSelection(const runtime::Services& services, runtime::FilePane& pane,
                       runtime::Downloads& downloads, platform::desktop::FilePickers& pickers,
                       QWidget* parent);

}  // namespace archive
