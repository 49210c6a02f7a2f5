#include "browser/ui/frameMain.h"

#include <QPointer>
#include <QShortcut>
#include <QStyle>
#include <system_error>
#include <utility>

#include "browser/ui/FileDrops.h"
#include "browser/ui/PaneDeeds.h"
#include "browser/ui/SelectionSize.h"
#include "browser/ui/frmPattern.h"
#include "browser/ui/frmShowFiles.h"
#include "browser/ui/frmView.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "runtime/ArchiveKind.h"
#include "ui_frameMain.h"

namespace browser {

using platform::desktop::connectHandler;
using platform::desktop::connectRemembered;
using platform::desktop::toControl;

using platform::Busy;
using platform::desktop::WhileBusy;

namespace {

constexpr std::size_t rootLength = 3;

}  // namespace

frameMain::frameMain(runtime::Services services, runtime::Selection& selection,
                     platform::desktop::FilePickers& pickers, QWidget* parent)
    : QFrame(parent), ui_(std::make_unique<Ui::frameMain>()), services_(services) {
  ui_->setupUi(this);
  ui_->cmdDirPaneUp->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
  ui_->DirPaneViews->setModel(model_);
  selection_ =
      new PaneSelection(services_, selection, *ui_->Dir1, *ui_->DirPaneViews, model_, *ui_->txtSelect, this);
  new SelectionSize(services_.system.drives, selection, *selection_, *ui_->Dir1, *ui_->lblSelectionText);
  listing_ = new PaneListing(
      services_, *ui_->Dir1, *ui_->DirPaneViews, model_, *selection_, [this] { return choice(); }, this);
  ui_->lblSelectionText->setBuddy(&ui_->DirPaneViews->view());
  ui_->File1->setDrives(services_.system.drives);
  auto* const refresh = new PaneRefresh(
      services_, *ui_->Dir1, *ui_->DirPaneViews, model_, *selection_, *listing_, [this] { return choice(); },
      this);
  connect(refresh, &PaneRefresh::folderGone, this,
          [this] { whenFree(Busy::Width::OpenFolder, [this] { refreshKeepList(); }); });
  navigation_ = new Navigation(services_, pickers, *ui_->Drive1, *ui_->Dir1, *ui_->txtLocation, this);
  ui_->txtLocation->setText(toControl(dir1Path()));
  new PaneDeeds(services_, *this, *ui_->DirPaneViews, model_, *selection_);
  new FileDrops(services_, *this, *ui_->DirPaneViews, model_, *selection_, {ui_->txtLocation});
  wireActions();
  wireFolders();
  wirePane();
  wireFiles();
}

frameMain::~frameMain() = default;

void frameMain::whenFree(Busy::Width width, std::function<void()> deed) {
  services_.system.busy.whenFree(width, [alive = QPointer<frameMain>(this), deed = std::move(deed)] {
    if (!alive.isNull()) deed();
  });
}

void frameMain::wireActions() {
  const auto relist = [this] { refreshKeepList(); };
  const auto belowRoot = [this] { return dir1Path().size() > rootLength; };
  const auto ownersKnown = [this] { return ownersKnown_; };
  constexpr auto later = WhileBusy::Remembered;
  const auto travels = [](const char* name, std::function<void()> where, QKeySequence keys) {
    return platform::desktop::Action{.name = name,
                                     .handler = std::move(where),
                                     .whileBusy = WhileBusy::Remembered,
                                     .width = Busy::Width::OpenFolder,
                                     .keys = std::move(keys)};
  };
  actions_ = new platform::desktop::ActionTable(
      *this, services_.system.busy,
      {
          {"cmdTar", [this] { emit createTar(); }},
          {"cmdExtract", [this] { emit extractTar(); }},
          {"checkAll", [this] { checkAll_Click(); }},
          {"cmdSetPerms", [this] { emit setPerms(); }, [this] { return !busy(); }},
          {"cmdSetOwner", [this] { emit setOwner(); }, ownersKnown},
          {"cmdSetGroup", [this] { emit setGroup(); }, [this] { return ownersKnown_ && !busy(); }},
          {"cmdDos2Unix", [this] { emit dos2Unix(); },
           [this] { return selection_->convertible() && !busy(); }},
          {"cmdDirPaneUp", [this] { cmdDirPaneUp_Click(); }, belowRoot, later, Busy::Width::OpenFolder},
          {"cmdRefreshFiles", [this] { cmdRefreshFiles_Click(); }, {}, later},
          {"optShowHidden", relist, {}, later},
          {"optShowSystem", relist, {}, later},
          {"Filter", [this] { Filter_Click(); }, {}, later},
          travels(
              "keyUp", [this] { navigation_->openParent(); }, Qt::ALT | Qt::Key_Up),
          travels(
              "keyBack", [this] { navigation_->goBack(); }, Qt::ALT | Qt::Key_Left),
          travels(
              "keyForward", [this] { navigation_->goForward(); }, Qt::ALT | Qt::Key_Right),
          {.name = "keyPattern", .handler = [this] { choosePattern(); }, .keys = Qt::CTRL | Qt::Key_F},
          {.name = "keyLocation", .handler = [this] { typeLocation(); }, .keys = Qt::CTRL | Qt::Key_L},
      });
}

void frameMain::setCaption(const char* button, const char* caption) {
  findChild<QAbstractButton*>(QLatin1String(button))->setText(QString::fromLatin1(caption));
}

void frameMain::wireFolders() {
  connect(navigation_, &Navigation::folderChanged, this, &frameMain::Dir1_Change);
  connect(navigation_, &Navigation::relistWanted, this,
          [this] { whenFree(Busy::Width::Relist, [this] { openDirPane(); }); });
  connect(navigation_, &Navigation::fileWanted, this, &frameMain::selectFile);
  connect(ui_->Dir1, &platform::desktop::FolderList::refused, this, &frameMain::tellUnopened);
  connect(ui_->divider, &Divider::dragged, this, &frameMain::dividerDragged);
}

void frameMain::wirePane() {
  PaneViews* const pane = ui_->DirPaneViews;
  pane->setBusy(services_.system.busy);
  connect(pane, &PaneViews::selectionChanged, selection_, &PaneSelection::read);
  connect(selection_, &PaneSelection::changed, this, [this] {
    actions_->update();
    emit selectionChanged();
  });
  connect(pane, &PaneViews::rowDoubleClicked, this, &frameMain::DirPane_DblClick);
  connect(pane, &PaneViews::keyReleased, this, &frameMain::DirPane_KeyUp);
  connect(pane, &PaneViews::mouseReleased, this, [this](int row, Qt::MouseButton button, QPoint at) {
    if (!busy()) DirPane_MouseUp(row, button, at);
  });
  connect(pane, &PaneViews::menuKeyPressed, this, &frameMain::openMenu);
  connect(pane, &PaneViews::sideButtonPressed, this, [this](Qt::MouseButton button) {
    whenFree(Busy::Width::OpenFolder,
             [this, button] { button == Qt::BackButton ? navigation_->goBack() : navigation_->goForward(); });
  });
  connect(pane, &PaneViews::columnClicked, this, [this](int column) {
    if (!busy()) DirPane_ColumnClick(column);
  });
}

void frameMain::wireFiles() {
  Busy& running = services_.system.busy;
  connectHandler(ui_->File1, &QListView::clicked, this, running, &frameMain::File1_Click);
  connectHandler(ui_->File1, &QListView::doubleClicked, this, running, &frameMain::File1_DblClick);
  ui_->File1->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(ui_->File1, &QListView::customContextMenuRequested, this,
          [this](QPoint at) { openMenu(ui_->File1->viewport()->mapToGlobal(at)); });
  const auto onKey = [this](const QKeySequence& key) {
    auto* shortcut = new QShortcut(key, ui_->File1);
    shortcut->setContext(Qt::WidgetShortcut);
    return shortcut;
  };
  connectRemembered(onKey(QKeySequence(Qt::Key_Escape)), &QShortcut::activated, this, running,
                    Busy::Width::Relist, &frameMain::openDirPane);
  connectHandler(onKey(QKeySequence(Qt::CTRL | Qt::Key_A)), &QShortcut::activated, this, running,
                 &frameMain::checkAll_Click);
}

void frameMain::setLoading(bool loading) {
  loading_ = loading;
  selection_->setLoading(loading);
}

void frameMain::openFolder(const std::string& path) { navigation_->openFolder(path); }

std::string frameMain::dir1Path() const { return ui_->Dir1->path(); }

std::string frameMain::GetDir1Path() const { return runtime::withTrailingBackslash(dir1Path()); }

ListingChoice frameMain::choice() const {
  return {ui_->optShowHidden->isChecked(), ui_->optShowSystem->isChecked(), ui_->Filter->currentIndex(),
          ui_->Filter->count(), customPattern_};
}

void frameMain::fillDirPane() {
  const Busy::Scope busy(services_.system.busy);
  actions_->update();
  listing_->list();
}

void frameMain::listRows() {
  const Busy::Scope busy(services_.system.busy);
  actions_->update();
  listing_->listRows();
}

void frameMain::readModes() {
  const Busy::Scope busy(services_.system.busy);
  listing_->readModes();
}

void frameMain::openDirPane() {
  const Busy::Scope busy(services_.system.busy);
  ui_->DirPaneViews->view().scrollToTop();
  fillDirPane();
  selection_->reset();
}

void frameMain::refreshKeepList() {
  const Busy::Scope busy(services_.system.busy);
  actions_->update();
  if (!leaveGoneFolder()) listing_->listKeeping();
}

void frameMain::getDirPaneSelected() { selection_->read(); }

void frameMain::checkAll_Click() {
  selection_->selectAll();
  focusDirPane();
}

void frameMain::clearCurrentRow() { ui_->DirPaneViews->clearCurrentRow(); }

bool frameMain::selectRow(const std::string& name) { return selection_->add(name); }

void frameMain::showEntry(const std::string& path) {
  if (runtime::getFilePath(path) != GetDir1Path()) return;
  const std::vector<int> rows = model_.rowsOf({runtime::GetFileName(path)});
  if (!rows.empty()) ui_->DirPaneViews->goTo(rows.front());
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
  ownersKnown_ = enabled;
  actions_->update();
}

void frameMain::Dir1_Change() {
  const Busy::Scope busy(services_.system.busy);
  ui_->File1->setPath(dir1Path());
  loading_ ? listing_->awaitListing() : openDirPane();
  standOnFolderLeft();
  ui_->txtLocation->setText(toControl(dir1Path()));
  if (window()->isVisible()) focusDirPane();
  emit folderChanged();
}

/// Its nearest parent that is there is opened instead, unless the whole volume is absent.
bool frameMain::leaveGoneFolder() {
  const std::string gone = dir1Path();
  if (services_.system.files.folderExists(gone) || !navigation_->openNearest()) return false;
  services_.log.append(" The folder is not there any more: " + gone);
  return true;
}

/// Whoever went up stands on the folder that was left.
void frameMain::standOnFolderLeft() {
  const std::string left = std::exchange(shownFolder_, dir1Path());
  if (!left.empty()) showEntry(left);
}

void frameMain::selectFile(const std::string& name) {
  if (model_.rowsOf({name}).empty()) openDirPane();
  {
    const PaneSelection::Lock lock(*selection_);
    ui_->DirPaneViews->clearSelected();
    if (selection_->add(name)) goToSelected();
  }
  getDirPaneSelected();
}

void frameMain::openRow(int row) {
  const PaneRow& chosen = model_.rows()[static_cast<std::size_t>(row)];
  const std::string path = GetDir1Path() + chosen.name;
  if (!isFolderRow(chosen)) {
    if (!busy()) openArchive(path);
    return;
  }
  whenFree(Busy::Width::OpenFolder, [this, path] {
    if (!navigation_->openSubfolder(path)) tellUnopened(path);
    focusDirPane();
  });
}

void frameMain::tellUnopened(const std::string& folder) {
  const int problem = services_.system.files.readProblem(folder);
  services_.log.append(" Unable to open folder: " + folder + " (" + std::system_category().message(problem) +
                       ")");
}

void frameMain::openArchive(const std::string& path) {
  if (runtime::archiveKind(path)) emit archiveOpened(path);
}

void frameMain::DirPane_DblClick(int row) {
  if (busy()) return openRow(row);
  {
    const PaneListing::Shown shown(*ui_->DirPaneViews);
    openRow(row);
  }
  focusDirPane();
}

void frameMain::DirPane_KeyUp(int key) {
  if (key == Qt::Key_Backspace) whenFree(Busy::Width::OpenFolder, [this] { navigation_->openParent(); });
  if (key == Qt::Key_Return || key == Qt::Key_Enter) openCurrent();
  if (busy()) return;
  focusDirPane();
  getDirPaneSelected();
}

/// Enter: the current row, where it is selected, otherwise the first one that is.
void frameMain::openCurrent() {
  const int row = ui_->DirPaneViews->chosenRow();
  if (row < 0) return;
  const PaneRow& chosen = model_.rows()[static_cast<std::size_t>(row)];
  if (isFolderRow(chosen))
    openRow(row);
  else if (!busy() && ui_->DirPaneViews->selectedRows().size() == 1 && runtime::IsArchiveName(chosen.name))
    emit extractTar();
}

void frameMain::DirPane_MouseUp(int row, Qt::MouseButton button, QPoint at) {
  if (row < 0) {
    const PaneSelection::Lock lock(*selection_);
    ui_->DirPaneViews->clearSelected();
  }
  if (row < 0 || selection_->count() > 1) getDirPaneSelected();
  if (button == Qt::RightButton) openMenu(at);
}

void frameMain::openMenu(QPoint at) {
  if (busy()) return;
  getDirPaneSelected();
  emit menuWanted(at);
}

DrawnMenu* frameMain::newShowFilesMenu(DrawnMenu& opener) {
  return new frmShowFiles(services_.system.busy, *ui_->optShowHidden, *ui_->optShowSystem, opener);
}

DrawnMenu* frameMain::newViewMenu(DrawnMenu& opener) {
  const auto choose = [self = QPointer<frameMain>(this)](int mode) {
    if (self.isNull()) return;
    self->setViewMode(mode);
    self->refreshKeepList();
  };
  return new frmView(services_.system.busy, listing_->viewMode(), choose, opener);
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

void frameMain::Filter_Click() {
  if (loading_) return;
  if (ui_->Filter->currentIndex() == ui_->Filter->count() - 1) askForPattern();
  refreshKeepList();
  focusDirPane();
}

bool frameMain::askForPattern() {
  frmPattern dialog(customPattern_, window());
  if (dialog.exec() != QDialog::Accepted) return false;
  customPattern_ = dialog.pattern();
  return true;
}

void frameMain::choosePattern() {
  if (!askForPattern()) return;
  ui_->Filter->setCurrentIndex(ui_->Filter->count() - 1);
  refreshKeepList();
  focusDirPane();
}

void frameMain::typeLocation() {
  ui_->txtLocation->setFocus(Qt::ShortcutFocusReason);
  ui_->txtLocation->selectAll();
}

void frameMain::File1_Click() {
  std::vector<SelectedEntry> entries;
  for (const std::string& name : ui_->File1->selectedNames()) entries.push_back({name});
  selection_->take(entries);
}

void frameMain::File1_DblClick() {
  const std::vector<std::string> names = ui_->File1->selectedNames();
  if (!names.empty()) openArchive(GetDir1Path() + names.front());
}

}  // namespace browser
