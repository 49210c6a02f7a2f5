#pragma once

#include <QGroupBox>
#include <memory>
#include <optional>
#include <string>

#include "archive/ExtractJob.h"
#include "archive/OpenArchives.h"
#include "archive/TakeOutJob.h"
#include "archive/ui/ArchiveTreeModel.h"
#include "platform/desktop/Actions.h"
#include "platform/desktop/FilePickers.h"
#include "runtime/FilePane.h"
#include "runtime/Services.h"

class QLineEdit;
class QMenu;

namespace Ui {
class frameUntar;
}

namespace archive {

/// The extract frame: an archive's contents as a tree with check boxes, and their extraction. A member that
/// is an archive itself can be shown instead; the box then still names the file around it, and the tree's
/// label says what is shown. The main window shows the frame in place of the browsing area, and places what
/// stands in it.
class frameUntar : public QGroupBox {
  Q_OBJECT

 public:
  frameUntar(runtime::Services services, runtime::FilePane& pane, platform::desktop::FilePickers& pickers,
             QWidget* parent = nullptr);
  ~frameUntar() override;

  /// Puts the initial texts, the hint entry and no archive into the frame; with exactly one archive selected,
  /// that archive and the output folder proposed for it, and lists it.
  void open();
  /// A double click into an archive: fills both boxes and lists it.
  void open(const std::string& archivePath);

 signals:
  void shown();   ///< the frame is to be shown in place of the browsing area (before anything is listed)
  void closed();  ///< the browsing area is to come back

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Progress;
  /// Entries that were dragged, and what was unpacked for that.
  struct Dragged {
    ListedFile file;
    std::vector<NodeId> entries;
    std::vector<std::string> members;
    TakenOut out;
  };
  struct Paths {
    std::string archive;
    std::string outFolder;
  };

  void wire();
  void wireTree();
  void reset();
  void ListArchive();
  bool list(const std::string& path);
  void beginListing(const std::string& path);
  void endListing(Listing listing);
  void ExtractArchive(Extract what);
  void showEnd(const Extraction& end, std::size_t logged);
  void leave();
  bool showsOlderFile() const;
  bool readBox(Focus which);
  void proposeFor(const std::string& archivePath);
  void txtFileIn_LostFocus();
  Paths typedPaths() const;
  void focusOn(Focus focus);

  std::string archiveToList();
  bool canOpenInside() const;
  bool enter(UnpackedMember inner);
  void goBack();
  void closeInside();
  void openAgain(const ArchiveTree& tree);
  void propose(const std::string& folder);
  void tellWhatIsShown();

  void tarTree_Toggle(const QModelIndex& index);
  void tarTree_StartDrag();
  std::vector<NodeId> selectedEntries() const;
  const std::vector<std::string>* takeOut(const std::vector<NodeId>& entries);

  void cmdGetFile_Click();
  void cmdSelectOut_Click();
  void cmdRefresh_Click() { ListArchive(); }
  void cmdUnTar_Click() { ExtractArchive(Extract::All); }
  void cmdUnTarSelected_Click();
  void cmdCancel_Click();
  void cmdSelectAllTar_Click() { selectAll(true); }
  void cmdSelectNoneTar_Click() { selectAll(false); }
  void selectAll(bool state);
  void tarTree_MouseUp(const QPoint& position);
  void mnuTarTreeProperties_Click();
  void mnuTarTreeOpen_Click();
  void cmdBack_Click();

  runtime::Services services_;
  runtime::FilePane& pane_;
  platform::desktop::FilePickers& pickers_;
  std::unique_ptr<Ui::frameUntar> ui_;
  ArchiveTreeModel* model_;
  QMenu* mnuTarTreeRightClick_;
  platform::desktop::ActionTable* actions_ = nullptr;
  std::optional<ListedFile> listed_;  // of a tree that shows the whole archive
  ListedFile reading_;
  OpenArchives inside_;           // the way to what is shown, where that is a member of another
  std::string proposal_;          // the output folder proposed for what is shown, or the box's first text
  std::vector<Dragged> dragged_;  // out of the archive that is shown; others may still copy from there
  NodeId rightClickedNode_ = 0;
  bool listing_ = false;
  bool extractable_ = true;  // the extract buttons; off from a listing's begin until one went well
  bool leaving_ = false;     // Cancel was pressed while a job ran
};

}  // namespace archive
