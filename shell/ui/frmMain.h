#pragma once

#include <QMainWindow>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "archive/ui/frameUntar.h"
#include "browser/Layout.h"
#include "browser/ui/frameMain.h"
#include "perms/ui/frmPermissions.h"
#include "platform/desktop/Actions.h"
#include "platform/desktop/FilePickers.h"
#include "runtime/Downloads.h"
#include "runtime/FilePane.h"
#include "shell/CommandLine.h"
#include "shell/Program.h"
#include "shell/ui/PaneMenu.h"
#include "shell/ui/WindowMemory.h"

namespace Ui {
class frmMain;
}

namespace shell {

/// The main window: menu bar, browsing area or extract frame, and log pane. Unloading it ends the program.
class frmMain : public QMainWindow, public runtime::FilePane, public runtime::Downloads {
  Q_OBJECT

 public:
  /// Both are lent for the window's life.
  frmMain(Program& program, platform::desktop::FilePickers& pickers);
  ~frmMain() override;

  /// Runs the whole start-up. False: the program ends without the window having a life of its own.
  bool Load(const CommandLine& commandLine);

  void getDirPaneSelected();
  std::vector<std::string> selectedPaths() const override;
  std::string selectionText() const override;
  std::vector<std::string> paneItems() const override;
  std::string GetDir1Path() const override;
  void selectAllRows() override;
  void refreshKeepList() override;
  void showEntry(const std::string& path) override;
  bool setOwnerShown() const override;
  void netSetFile(const std::string& path) override;
  void showfrmWDXOptions(const std::string& path) override;

  browser::frameMain& browsing() { return *frameMain_; }
  void cmdTar_Click();
  void cmdExtract_Click();
  bool oneFileSelected() const;  ///< what a download needs
  void mnuSerial_Click();
  void mnuNetwork_Click();
  void showPermissionsAtStart();  ///< the dialog for the selection, not modal
  /// Opens the network download for a file, modally.
  void showNetloader(const std::string& path);
  bool ended() const { return ended_; }  ///< it was closed, and the program is to end
  void endProgram();                     ///< remembers the folder and leaves every event loop
  Program& program() { return program_; }
  platform::desktop::FilePickers& pickers() { return pickers_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void wireActions();
  void wireFrames();
  void connectLog();
  void showLogEntry(const std::string& entry);
  bool agreed(const std::string& question, const char* title);
  void cmdSetPerms_Click();
  perms::frmPermissions* newPermissions();
  void relistAfterRun();
  void mnuUndoPermissions_Click();
  void cmdSetOwner_Click();
  void cmdSetGroup_Click();
  void cmdDos2Unix_Click();
  void mnuShowLog_Click();
  void mnuAdmin_Click();
  void mnuContent_Click();
  void mnuAbout_Click();
  void showPortErr(const std::string& path);
  void checkAllKey();
  void end();
  void showUntar();
  void hideUntar();
  void openArchive(const std::string& path);
  void updateDownloadMenu();
  void layOut();
  void divider_MouseMove(int x);

  std::unique_ptr<Ui::frmMain> ui_;
  Program& program_;
  platform::desktop::FilePickers& pickers_;
  browser::frameMain* frameMain_;
  archive::frameUntar* frameUntar_;
  browser::Layout layout_;
  std::optional<WindowMemory> memory_;
  platform::desktop::ActionTable* actions_ = nullptr;  // a child
  PaneMenu paneMenu_{*this};
  std::optional<perms::PermissionUndo> undo_;  // of the latest run
  std::string sendFilePath_;                   // was given to a download last
  bool mayDownload_ = false;
  bool logShown_ = false;
  bool ended_ = false;
};

}  // namespace shell
