#pragma once

#include <QFrame>
#include <memory>
#include <string>
#include <vector>

#include "browser/ui/DirPaneModel.h"
#include "browser/ui/Navigation.h"
#include "platform/desktop/FilePickers.h"
#include "runtime/Selection.h"
#include "runtime/Services.h"

namespace Ui {
class frameMain;
}

namespace browser {

/// The browsing area of the main window: drive, folder and file panes, filter, selection summary and action
/// buttons. The current folder is the folder list's path.
class frameMain : public QFrame {
  Q_OBJECT

 public:
  frameMain(runtime::Services services, runtime::Selection& selection,
            platform::desktop::FilePickers& pickers, QWidget* parent = nullptr);
  ~frameMain() override;

  /// The selection-update lock and the loading flag; on while the main window loads.
  void setLoading(bool loading);
  void openFolder(const std::string& path);  ///< a path that is no folder opens C:\ instead
  std::string dir1Path() const;              ///< the folder list's path
  std::string GetDir1Path() const;           ///< the same with a trailing backslash

  /// A listing that is asked for while one runs is remembered and done once after it.
  void fillDirPane();
  void openDirPane();      ///< lists and resets the selection
  void refreshKeepList();  ///< lists and selects the same names again
  void getDirPaneSelected();
  void checkAll_Click();
  int viewMode() const { return viewMode_; }
  void setViewMode(int mode) { viewMode_ = mode; }  ///< 0 icons, 2 list, 3 details; applied at each listing

  void clearCurrentRow();                      ///< no row is the current one
  bool selectRow(const std::string& name);     ///< adds the first row of that exact name; false: none
  std::vector<std::string> paneItems() const;  ///< names of all rows, in list order
  std::string selectionText() const;           ///< what txtSelect shows
  void focusDirPane();
  void goToSelected();         ///< focuses the pane with the first selected row current and in view
  bool setOwnerShown() const;  ///< whether the button "Set Owner" is shown (not hidden)
  void enableOwnerButtons(bool enabled);  ///< cmdSetOwner and cmdSetGroup

 signals:
  void folderChanged();                         ///< after a new current folder was listed
  void selectionChanged();                      ///< after the selection list was rebuilt or reset
  void createTar();                             ///< cmdTar
  void extractTar();                            ///< cmdExtract, or Enter on an archive
  void archiveOpened(const std::string& path);  ///< a double click into an archive
  void dividerDragged(int x);                   ///< see Divider::dragged; the layout's owner moves it

 private:
  enum class Listing { Nothing, Fill, Refresh, Open };  // what is asked for later covers what came before
  class SelectionLock;
  class PaneDisabled;

  void wireFolders();
  void wirePane();
  void wireFiles();
  void wireButtons();
  void list(Listing wanted);
  void listFolder();
  void listRows(const std::string& folder);
  void refreshNow();
  void resetSelection();
  void showSelection(const std::string& text, bool convertible);
  std::vector<std::string> selectedNames() const;
  void openRow(int row);
  void openArchive(const std::string& path);
  void openCurrent();

  void Dir1_Change();
  void DirPane_DblClick(int row);
  void DirPane_KeyUp(int key);
  void DirPane_MouseUp(int row);
  void DirPane_ColumnClick(int column);
  void cmdDirPaneUp_Click();
  void cmdRefreshFiles_Click();
  void Filter_Click(int index);
  void File1_Click();
  void File1_DblClick();

  std::unique_ptr<Ui::frameMain> ui_;
  runtime::Services services_;
  runtime::Selection& selection_;
  DirPaneModel model_;
  Navigation* navigation_;  // a child
  std::string customPattern_ = "*.*";
  int viewMode_ = 3;
  bool loading_ = false;
  bool selectionLocked_ = false;
  bool listing_ = false;
  Listing pending_ = Listing::Nothing;
};

}  // namespace browser
