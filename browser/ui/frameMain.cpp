#include "browser/ui/frameMain.h"

#include <QScrollBar>
#include <QShortcut>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "browser/ModePass.h"
#include "browser/PaneRows.h"
#include "browser/SelectedRows.h"
#include "browser/ui/frmPattern.h"
#include "platform/DirectorySearch.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "platform/desktop/WaitCursor.h"
#include "runtime/ArchiveKind.h"
#include "ui_frameMain.h"

namespace browser {

using platform::desktop::connectHandler;
using platform::desktop::toControl;

namespace {

constexpr std::size_t driveLength = 2;
constexpr std::size_t rootLength = 3;

/// A drive is ready when its folder can be read.
bool driveReady(const platform::DriveTable& drives, const std::string& path) {
  return platform::DirectorySearch(drives, path.substr(0, driveLength) + "\\*").next().has_value();
}

}  // namespace

/// The program changes the selection in several steps; it is read once, afterwards.
class frameMain::SelectionLock {
 public:
  explicit SelectionLock(frameMain& owner)
      : owner_(owner), before_(std::exchange(owner.selectionLocked_, true)) {}
  ~SelectionLock() { owner_.selectionLocked_ = before_; }
  SelectionLock(const SelectionLock&) = delete;
  SelectionLock& operator=(const SelectionLock&) = delete;

 private:
  frameMain& owner_;
  bool before_;
};

/// The pane takes no input. Its focus waits in the frame, so that a key meant for the pane reaches no button,
/// and comes back unless the user went elsewhere.
class frameMain::PaneDisabled {
 public:
  explicit PaneDisabled(frameMain& owner) : owner_(owner), pane_(*owner.ui_->DirPaneViews) {
    if (!pane_.isEnabled()) return;
    if (pane_.view().hasFocus()) owner_.setFocus();
    pane_.setEnabled(false);
    mine_ = true;
  }
  ~PaneDisabled() {
    if (!mine_) return;
    pane_.setEnabled(true);
    if (owner_.hasFocus()) owner_.focusDirPane();
  }
  PaneDisabled(const PaneDisabled&) = delete;
  PaneDisabled& operator=(const PaneDisabled&) = delete;

 private:
  frameMain& owner_;
  PaneViews& pane_;
  bool mine_ = false;
};

frameMain::frameMain(runtime::Services services, runtime::Selection& selection,
                     platform::desktop::FilePickers& pickers, QWidget* parent)
    : QFrame(parent), ui_(std::make_unique<Ui::frameMain>()), services_(services), selection_(selection) {
  ui_->setupUi(this);
  ui_->cmdDirPaneUp->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
  ui_->DirPaneViews->setModel(model_);
  ui_->DirPaneViews->setViewMode(viewMode_);
  ui_->lblSelectionText->setBuddy(&ui_->DirPaneViews->view());
  ui_->File1->setDrives(services_.system.drives);
  connect(ui_->txtSelect, &QLineEdit::textChanged, this, [this](const QString& text) {
    ui_->txtSelect->setToolTip(platform::desktop::toPlainTip(platform::desktop::fromControl(text)));
  });
  navigation_ = new Navigation(services_, pickers, *ui_->Drive1, *ui_->Dir1, *ui_->txtLocation, this);
  ui_->txtLocation->setText(toControl(dir1Path()));
  wireFolders();
  wirePane();
  wireFiles();
  wireButtons();
}

frameMain::~frameMain() = default;

void frameMain::wireFolders() {
  connect(navigation_, &Navigation::folderChanged, this, &frameMain::Dir1_Change);
  connect(navigation_, &Navigation::relistWanted, this, &frameMain::openDirPane);
  connect(ui_->divider, &Divider::dragged, this, &frameMain::dividerDragged);
}

void frameMain::wirePane() {
  const platform::Busy& running = services_.system.busy;
  PaneViews* const pane = ui_->DirPaneViews;
  connect(pane, &PaneViews::selectionChanged, this, &frameMain::getDirPaneSelected);
  const auto whenIdle = [this, &running](void (frameMain::*handler)(int)) {
    return [this, &running, handler](int value) {
      if (!running.held()) (this->*handler)(value);
    };
  };
  connect(pane, &PaneViews::rowDoubleClicked, this, whenIdle(&frameMain::DirPane_DblClick));
  connect(pane, &PaneViews::keyReleased, this, whenIdle(&frameMain::DirPane_KeyUp));
  connect(pane, &PaneViews::mouseReleased, this, whenIdle(&frameMain::DirPane_MouseUp));
  connect(pane, &PaneViews::columnClicked, this, whenIdle(&frameMain::DirPane_ColumnClick));
  connect(ui_->Filter, &QComboBox::activated, this, whenIdle(&frameMain::Filter_Click));
}

void frameMain::wireFiles() {
  const platform::Busy& running = services_.system.busy;
  connectHandler(ui_->File1, &QListView::clicked, this, running, &frameMain::File1_Click);
  connectHandler(ui_->File1, &QListView::doubleClicked, this, running, &frameMain::File1_DblClick);
  const auto onKey = [this, &running](const QKeySequence& key, void (frameMain::*handler)()) {
    auto* shortcut = new QShortcut(key, ui_->File1);
    shortcut->setContext(Qt::WidgetShortcut);
    connectHandler(shortcut, &QShortcut::activated, this, running, handler);
  };
  onKey(QKeySequence(Qt::Key_Escape), &frameMain::openDirPane);
  onKey(QKeySequence(Qt::CTRL | Qt::Key_A), &frameMain::checkAll_Click);
}

void frameMain::wireButtons() {
  const platform::Busy& running = services_.system.busy;
  const auto onClick = [this, &running](QAbstractButton* button, void (frameMain::*handler)()) {
    connectHandler(button, &QAbstractButton::clicked, this, running, handler);
  };
  onClick(ui_->cmdDirPaneUp, &frameMain::cmdDirPaneUp_Click);
  onClick(ui_->cmdRefreshFiles, &frameMain::cmdRefreshFiles_Click);
  onClick(ui_->checkAll, &frameMain::checkAll_Click);
  onClick(ui_->optShowHidden, &frameMain::refreshKeepList);
  onClick(ui_->optShowSystem, &frameMain::refreshKeepList);
  onClick(ui_->cmdTar, &frameMain::createTar);
  onClick(ui_->cmdExtract, &frameMain::extractTar);
}

void frameMain::setLoading(bool loading) { loading_ = loading; }

void frameMain::openFolder(const std::string& path) { navigation_->openFolder(path); }

std::string frameMain::dir1Path() const { return ui_->Dir1->path(); }

std::string frameMain::GetDir1Path() const { return runtime::withTrailingBackslash(dir1Path()); }

void frameMain::fillDirPane() { list(Listing::Fill); }

void frameMain::openDirPane() { list(Listing::Open); }

void frameMain::refreshKeepList() { list(Listing::Refresh); }

void frameMain::list(Listing wanted) {
  if (listing_) {
    pending_ = std::max(pending_, wanted);
    if (wanted != Listing::Open) return;
    model_.setRows({});  // rows of another folder must not be taken for rows of this one
    resetSelection();
    return;
  }
  listing_ = true;
  for (pending_ = wanted; pending_ != Listing::Nothing;) {
    const Listing now = std::exchange(pending_, Listing::Nothing);
    now == Listing::Refresh ? refreshNow() : listFolder();
    if (now == Listing::Open) resetSelection();
  }
  listing_ = false;
}

void frameMain::listFolder() {
  const std::string path = dir1Path();
  ui_->cmdDirPaneUp->setEnabled(path.size() > rootLength);
  if (!driveReady(services_.system.drives, path)) return;
  const platform::desktop::WaitCursor hourglass;
  const PaneDisabled disabled(*this);
  ui_->DirPaneViews->setViewMode(viewMode_);
  listRows(path);
}

void frameMain::listRows(const std::string& folder) {
  runtime::FileClass found(services_.system.drives);
  found.Refresh(folder + "\\*");
  model_.setRows(paneRows(found, {ui_->optShowHidden->isChecked(), ui_->optShowSystem->isChecked(),
                                  ui_->Filter->currentIndex(), ui_->Filter->count(), customPattern_}));
  found.EmptyTrash();
  std::vector<std::string> names;
  names.reserve(model_.rows().size());
  for (const PaneRow& row : model_.rows()) names.push_back(row.name);
  const auto current = [this] { return pending_ != Listing::Open; };
  runModePass(services_.api, services_.cygwin.cygwinBin(), runtime::withTrailingBackslash(folder), names,
              [&](std::size_t first, const std::vector<std::string>& modes) {
                if (current()) model_.setModes(first, modes);
                return current();
              });
  model_.sortBy(model_.order());
}

void frameMain::refreshNow() {
  getDirPaneSelected();
  PaneViews& pane = *ui_->DirPaneViews;
  const std::vector<std::string> selected = selectedNames();
  const int row = pane.currentRow();
  const int scrolled = pane.view().verticalScrollBar()->value();
  const std::string current = row < 0 ? std::string() : model_.rows()[static_cast<std::size_t>(row)].name;
  ui_->Dir1->refresh();
  listFolder();
  services_.user.letEventsRun();
  if (pending_ == Listing::Open) return;
  {
    const SelectionLock lock(*this);
    pane.selectRows(model_.rowsOf(selected));
    const std::vector<int> place = model_.rowsOf({current});
    pane.returnTo(place.empty() ? -1 : place.front(), scrolled);
  }
  getDirPaneSelected();
}

void frameMain::resetSelection() {
  selection_ = {};
  showSelection(GetDir1Path() + "*", false);
}

void frameMain::getDirPaneSelected() {
  if (loading_ || selectionLocked_) return;
  const SelectionCounts counts =
      rebuildSelection(selection_, services_.system.files, GetDir1Path(), selectedNames());
  showSelection(summaryText(counts), counts.files > 0 && counts.folders == 0);
}

void frameMain::showSelection(const std::string& text, bool convertible) {
  ui_->txtSelect->setText(toControl(text));
  ui_->txtSelect->home(false);
  ui_->cmdDos2Unix->setEnabled(convertible);
  emit selectionChanged();
}

std::vector<std::string> frameMain::selectedNames() const {
  std::vector<std::string> names;
  for (const int row : ui_->DirPaneViews->selectedRows())
    names.push_back(model_.rows()[static_cast<std::size_t>(row)].name);
  return names;
}

void frameMain::checkAll_Click() {
  {
    const SelectionLock lock(*this);
    ui_->txtSelect->clear();
    ui_->DirPaneViews->view().selectAll();
  }
  getDirPaneSelected();
  focusDirPane();
}

void frameMain::clearCurrentRow() { ui_->DirPaneViews->clearCurrentRow(); }

bool frameMain::selectRow(const std::string& name) {
  const std::vector<int> rows = model_.rowsOf({name});
  ui_->DirPaneViews->selectRows(rows);
  return !rows.empty();
}

void frameMain::goToSelected() {
  ui_->DirPaneViews->goToSelected();
  focusDirPane();
}

std::vector<std::string> frameMain::paneItems() const {
  std::vector<std::string> names;
  for (const PaneRow& row : model_.rows()) names.push_back(row.name);
  return names;
}

std::string frameMain::selectionText() const {
  return platform::desktop::fromControl(ui_->txtSelect->text());
}

void frameMain::focusDirPane() { ui_->DirPaneViews->view().setFocus(); }

bool frameMain::setOwnerShown() const { return !ui_->cmdSetOwner->isHidden(); }

void frameMain::enableOwnerButtons(bool enabled) {
  ui_->cmdSetOwner->setEnabled(enabled);
  ui_->cmdSetGroup->setEnabled(enabled);
}

void frameMain::Dir1_Change() {
  ui_->File1->setPath(dir1Path());
  openDirPane();
  ui_->txtLocation->setText(toControl(dir1Path()));
  if (window()->isVisible()) focusDirPane();
  emit folderChanged();
}

void frameMain::openRow(int row) {
  const PaneRow chosen = model_.rows()[static_cast<std::size_t>(row)];  // a listing replaces the rows
  const std::string path = GetDir1Path() + chosen.name;
  if (isFolderRow(chosen))
    navigation_->openSubfolder(path);
  else
    openArchive(path);
}

void frameMain::openArchive(const std::string& path) {
  if (runtime::archiveKind(path)) emit archiveOpened(path);
}

void frameMain::DirPane_DblClick(int row) {
  {
    const PaneDisabled disabled(*this);
    openRow(row);
  }
  focusDirPane();
}

void frameMain::DirPane_KeyUp(int key) {
  if (key == Qt::Key_Backspace) navigation_->openParent();
  if (key == Qt::Key_Return || key == Qt::Key_Enter) openCurrent();
  focusDirPane();
  getDirPaneSelected();
}

/// Enter: the current row, where it is selected, otherwise the first one that is.
void frameMain::openCurrent() {
  const std::vector<int> selected = ui_->DirPaneViews->selectedRows();
  if (selected.empty()) return;
  const int current = ui_->DirPaneViews->currentRow();
  const int row = std::binary_search(selected.begin(), selected.end(), current) ? current : selected.front();
  const PaneRow& chosen = model_.rows()[static_cast<std::size_t>(row)];
  if (isFolderRow(chosen))
    openRow(row);
  else if (selected.size() == 1 && runtime::IsArchiveName(chosen.name))
    emit extractTar();
}

void frameMain::DirPane_MouseUp(int row) {
  if (row < 0) {
    const SelectionLock lock(*this);
    ui_->DirPaneViews->clearSelected();
  }
  if (row < 0 || selection_.selectedCount() > 1) getDirPaneSelected();
}

void frameMain::DirPane_ColumnClick(int column) { model_.sortBy({column, !model_.order().ascending}); }

void frameMain::cmdDirPaneUp_Click() {
  navigation_->openParent();
  focusDirPane();
}

void frameMain::cmdRefreshFiles_Click() {
  refreshKeepList();
  focusDirPane();
}

void frameMain::Filter_Click(int index) {
  if (loading_) return;
  if (index == ui_->Filter->count() - 1) {
    frmPattern dialog(customPattern_, window());
    if (dialog.exec() == QDialog::Accepted) customPattern_ = dialog.pattern();
  }
  refreshKeepList();
  focusDirPane();
}

void frameMain::File1_Click() {
  const SelectionCounts counts =
      rebuildSelection(selection_, services_.system.files, GetDir1Path(), ui_->File1->selectedNames());
  showSelection(summaryText(counts), counts.files > 0 && counts.folders == 0);
}

void frameMain::File1_DblClick() {
  const std::vector<std::string> names = ui_->File1->selectedNames();
  if (!names.empty()) openArchive(GetDir1Path() + names.front());
}

}  // namespace browser
