#pragma once

#include <QFrame>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "browser/ui/DirPaneModel.h"
#include "browser/ui/DrawnMenu.h"
#include "browser/ui/Navigation.h"
#include "browser/ui/PaneListing.h"
#include "browser/ui/PaneRefresh.h"
#include "browser/ui/PaneSelection.h"
#include "platform/desktop/Actions.h"
#include "platform/desktop/FilePickers.h"
#include "runtime/Selection.h"
#include "runtime/Services.h"

namespace Ui {
class frameMain;
}

namespace browser {

/// The browsing area of the main window: drive, folder and file panes, filter, selection summary and action
/// buttons. The current folder is the folder list's path.
///
/// What the user does here that asks for a listing waits until no job holds the gate, and is done once. The
/// public operations act at once: a job that holds the gate may list as its step.
class frameMain : public QFrame {
  Q_OBJECT

 public:
  frameMain(runtime::Services services, runtime::Selection& selection,
            platform::desktop::FilePickers& pickers, QWidget* parent = nullptr);
  ~frameMain() override;

  /// On while the main window loads: the selection is not read, and a folder that is opened is not listed
  /// before listRows() or readModes().
  void setLoading(bool loading);
  void openFolder(const std::string& path);  ///< a path that is no folder opens C:\ instead
  std::string dir1Path() const;              ///< the folder list's path
  std::string GetDir1Path() const;           ///< the same with a trailing backslash

  void listRows();         ///< rows without modes: what a start-up selects from before its window shows
  void readModes();        ///< what is still missing: the modes, or the whole listing; keeps the selection
  void fillDirPane();      ///< lists
  void openDirPane();      ///< lists and resets the selection
  void refreshKeepList();  ///< lists and selects the same names again
  void getDirPaneSelected();
  void checkAll_Click();
  void setViewMode(int mode) { listing_->setViewMode(mode); }  ///< see PaneListing

  void clearCurrentRow();                      ///< no row is the current one
  bool selectRow(const std::string& name);     ///< adds the first row of that exact name; false: none
  std::vector<std::string> paneItems() const;  ///< names of all rows, in list order
  std::string selectionText() const;           ///< what txtSelect shows
  void focusDirPane();
  void showEntry(const std::string& path);  ///< its row, if any, becomes the current one and comes into view
  void goToSelected();         ///< focuses the pane with the first selected row current and in view
  bool setOwnerShown() const;  ///< whether the button "Set Owner" is shown (not hidden)
  void enableOwnerButtons(bool enabled);  ///< cmdSetOwner and cmdSetGroup

  DrawnMenu* newShowFilesMenu(DrawnMenu& opener);  ///< a child of the menu that it cascades from
  DrawnMenu* newViewMenu(DrawnMenu& opener);       ///< likewise

  /// Buttons, boxes and the filter: when each can be used, and what it does.
  platform::desktop::ActionTable& actions() { return *actions_; }
  void setCaption(const char* button, const char* caption);  ///< of one of its buttons

 signals:
  void folderChanged();                         ///< after a new current folder was listed
  void selectionChanged();                      ///< after the selection list was rebuilt or reset
  void createTar();                             ///< cmdTar
  void setPerms();                              ///< cmdSetPerms
  void setOwner();                              ///< cmdSetOwner
  void setGroup();                              ///< cmdSetGroup
  void dos2Unix();                              ///< cmdDos2Unix
  void extractTar();                            ///< cmdExtract, or Enter on an archive
  void archiveOpened(const std::string& path);  ///< a double click into an archive
  void menuWanted(QPoint at);                   ///< the pop-up menu, its corner in global pixels
  void dividerDragged(int x);                   ///< see Divider::dragged; the layout's owner moves it

 private:
  void wireFolders();
  void wirePane();
  void wireFiles();
  void wireActions();
  void whenFree(platform::Busy::Width width, std::function<void()> deed);
  bool busy() const { return services_.system.busy.held(); }
  ListingChoice choice() const;
  void selectFile(const std::string& name);
  void openRow(int row);
  void tellUnopened(const std::string& folder);
  void openArchive(const std::string& path);
  void openCurrent();

  void Dir1_Change();
  void standOnFolderLeft();
  bool leaveGoneFolder();
  void DirPane_DblClick(int row);
  void DirPane_KeyUp(int key);
  void DirPane_MouseUp(int row, Qt::MouseButton button, QPoint at);
  void openMenu(QPoint at);
  void DirPane_ColumnClick(int column);
  void cmdDirPaneUp_Click();
  void cmdRefreshFiles_Click();
  void Filter_Click();
  bool askForPattern();  // false: cancelled
  void choosePattern();
  void typeLocation();
  void File1_Click();
  void File1_DblClick();

  std::unique_ptr<Ui::frameMain> ui_;
  runtime::Services services_;
  DirPaneModel model_;
  PaneSelection* selection_;                 // a child
  PaneListing* listing_;                     // a child
  Navigation* navigation_;                   // a child
  platform::desktop::ActionTable* actions_;  // a child
  std::string customPattern_ = "*.*";
  std::string shownFolder_;  // the one that was listed last, or is to be
  bool loading_ = false;
  bool ownersKnown_ = true;  // the system has owners
};

}  // namespace browser
