#include "archive/ui/frameUntar.h"

#include <QMenu>
#include <QMouseEvent>

#include "archive/ExtractCommand.h"
#include "archive/ui/frmOverwriteFile.h"
#include "platform/desktop/ImageList.h"
#include "platform/desktop/Text.h"
#include "runtime/ImageKeys.h"
#include "runtime/ShowLogged.h"
#include "ui_frameUntar.h"

namespace archive {

/// A listing that goes into the frame's own tree and bar.
class frameUntar::Progress : public ListingProgress {
 public:
  Progress(frameUntar& frame, std::string path) : frame_(frame), path_(std::move(path)) {}
  void reading() override { frame_.beginListing(path_); }
  void filling() override {
    frame_.ui_->tarTree->hide();
    frame_.ui_->pbTarRefresh->show();
  }
  void showPercent(float percent) override {
    frame_.ui_->pbTarRefresh->setValue(qRound(percent));
    frame_.services_.user.letEventsRun();
  }
  void listed(const Listing& listing) override { frame_.endListing(listing); }

 private:
  frameUntar& frame_;
  std::string path_;
};

frameUntar::frameUntar(runtime::Services services, runtime::FilePane& pane,
                       platform::desktop::FilePickers& pickers, QWidget* parent)
    : QGroupBox(parent),
      services_(services),
      pane_(pane),
      pickers_(pickers),
      ui_(std::make_unique<Ui::frameUntar>()),
      model_(new ArchiveTreeModel(this)),
      mnuTarTreeRightClick_(new QMenu(QStringLiteral("TAR_RIGHT_CLICK"), this)) {
  ui_->setupUi(this);
  for (QPushButton* button : {ui_->cmdGetFile, ui_->cmdSelectOut})
    button->setIcon(platform::desktop::imageIcon(runtime::getImageIndex("fldrOpen")));
  ui_->tarTree->setModel(model_);
  wireTree();
  wire();
  reset();
}

/// A box that loses the keyboard with its window would still call us.
frameUntar::~frameUntar() { ui_->txtFileIn->disconnect(this); }

void frameUntar::wire() {
  using platform::desktop::WhileBusy;
  const auto does = [this](void (frameUntar::*handler)()) { return [this, handler] { (this->*handler)(); }; };
  const auto idle = [this] { return !listing_; };
  const auto listed = [this] { return extractable_; };
  actions_ = new platform::desktop::ActionTable(
      *this, services_.system.busy,
      {{"txtFileIn", does(&frameUntar::ListArchive), idle},
       {"txtOutLocation"},
       {"cmdGetFile", does(&frameUntar::cmdGetFile_Click), idle},
       {"cmdSelectOut", does(&frameUntar::cmdSelectOut_Click)},
       {"cmdRefresh", does(&frameUntar::cmdRefresh_Click), idle},
       {"cmdUnTar", does(&frameUntar::cmdUnTar_Click), listed},
       {"cmdUnTarSelected", does(&frameUntar::cmdUnTarSelected_Click), listed},
       {"cmdCancel", does(&frameUntar::cmdCancel_Click), {}, WhileBusy::Acts},
       {.name = "keyEscape",
        .handler = does(&frameUntar::cmdCancel_Click),
        .whileBusy = WhileBusy::Acts,
        .keys = Qt::Key_Escape},
       {"cmdSelectAllTar", does(&frameUntar::cmdSelectAllTar_Click), listed},
       {"cmdSelectNoneTar", does(&frameUntar::cmdSelectNoneTar_Click), listed},
       {"cmdBack", does(&frameUntar::cmdBack_Click), idle},
       {"mnuTarTreeProperties", does(&frameUntar::mnuTarTreeProperties_Click)},
       {"mnuTarTreeOpen", does(&frameUntar::mnuTarTreeOpen_Click), [this] { return canOpenInside(); }}});
  platform::desktop::connectHandler(ui_->txtFileIn, &QLineEdit::editingFinished, this, services_.system.busy,
                                    &frameUntar::txtFileIn_LostFocus);
}

void frameUntar::wireTree() {
  mnuTarTreeRightClick_->setObjectName(QStringLiteral("mnuTarTreeRightClick"));
  const auto add = [this](const char* caption, const char* name) {
    mnuTarTreeRightClick_->addAction(QLatin1String(caption))->setObjectName(QLatin1String(name));
  };
  add("Properties", "mnuTarTreeProperties");
  add("Open", "mnuTarTreeOpen");
  connect(ui_->tarTree, &QTreeView::customContextMenuRequested, this, &frameUntar::tarTree_MouseUp);
  connect(ui_->tarTree, &QTreeView::collapsed, model_,
          [this](const QModelIndex& index) { model_->setFolderImage(index, "fldr"); });
  connect(ui_->tarTree, &QTreeView::expanded, model_,
          [this](const QModelIndex& index) { model_->setFolderImage(index, "fldrOpen"); });
  connect(ui_->tarTree, &TarTree::toggled, this, &frameUntar::tarTree_Toggle);
  platform::desktop::connectHandler(ui_->tarTree, &TarTree::dragBegun, this, services_.system.busy,
                                    &frameUntar::tarTree_StartDrag);
  ui_->tarTree->viewport()->installEventFilter(this);
}

void frameUntar::reset() {
  closeInside();
  ui_->txtOutLocation->setText(QString::fromLatin1(noFolderChosen));
  ui_->txtFileIn->setText(QString::fromLatin1(noArchiveChosen));
  ui_->frameTarRefreshLabel->hide();
  ui_->pbTarRefresh->hide();
  model_->showHint(QStringLiteral("Click 'Refresh Contents' to display Tar file contents"));
  listed_.reset();
  rightClickedNode_ = 0;
  proposal_ = noFolderChosen;
}

void frameUntar::open() {
  const std::vector<std::string> selected = pane_.selectedPaths();
  if (selected.size() == 1 && runtime::opensAsArchive(selected.front())) return open(selected.front());
  reset();
  emit shown();
  focusOn(Focus::ArchivePath);
}

void frameUntar::open(const std::string& archivePath) {
  reset();
  emit shown();
  ui_->txtFileIn->setText(platform::desktop::toControl(archivePath));
  propose(proposedOutFolder(archivePath));
  ListArchive();
}

void frameUntar::ListArchive() {
  if (!readBox(Focus::ArchivePath)) return;
  const std::string path = archiveToList();
  proposeFor(typedPaths().archive);
  leaving_ = false;
  bool whole = false;
  {
    const platform::Busy::Scope busy(services_.system.busy);
    whole = list(path);
  }
  if (leaving_) return leave();
  whole ? ui_->cmdUnTar->setFocus(Qt::OtherFocusReason) : focusOn(Focus::ArchivePath);
}

/// Under the gate of its caller. Whether the whole archive is shown.
bool frameUntar::list(const std::string& path) {
  Progress progress(*this, path);
  Listing listing = ListingJob(services_, path, progress).run();
  const bool whole = listing.end == runtime::JobEnd::Done;
  if (listing_) endListing(std::move(listing));
  return whole;
}

void frameUntar::beginListing(const std::string& path) {
  reading_ = listedFile(services_.system.files, path);
  std::erase_if(dragged_, [&path](const Dragged& one) { return one.file.path != path; });
  rightClickedNode_ = 0;
  listed_.reset();
  model_->clear();
  ui_->frameTarRefreshLabel->show();
  extractable_ = false;
  actions_->update();
  services_.user.letEventsRun();
  listing_ = true;
  actions_->update();
}

void frameUntar::endListing(Listing listing) {
  const bool whole = listing.end == runtime::JobEnd::Done;
  listing_ = false;
  extractable_ = whole;
  actions_->update();
  ui_->pbTarRefresh->hide();
  ui_->frameTarRefreshLabel->hide();
  model_->setTree(std::move(listing.tree));
  ui_->tarTree->show();
  if (!whole) return;
  listed_ = reading_;
}

/// Only where the tree shows a whole archive.
bool frameUntar::showsOlderFile() const {
  return *listed_ != listedFile(services_.system.files, listed_->path);
}

/// Box, ticks and tree as they are now; a tree that shows another archive, or an older one, is listed again.
void frameUntar::ExtractArchive(Extract what) {
  if (!readBox(Focus::ArchivePath)) return;
  const std::string named = typedPaths().archive;
  if (!inside_.empty() && inside_.outermost().file.path != named) closeInside();
  proposeFor(named);
  if (!readBox(Focus::OutputFolder)) return;
  const std::string archive = inside_.empty() ? named : inside_.path();
  ExtractRequest request{what, archive, typedPaths().outFolder};
  if (!inside_.empty()) request.shownAs = inside_.name();
  if (listed_ && listed_->path == archive && !showsOlderFile()) request.tree = model_->tree();
  Progress progress(*this, archive);
  OverwriteDialogs asker(window());
  leaving_ = false;
  Extraction end;
  {
    const platform::Busy::Scope busy(services_.system.busy);
    const std::size_t logged = services_.log.size();
    end = ExtractJob(services_, asker, progress, std::move(request)).run();
    showEnd(end, logged);
  }
  if (end.toolRan) return;
  if (leaving_) return leave();
  focusOn(end.focus == Focus::None && !extractable_ ? Focus::ArchivePath : end.focus);
}

/// After a stop no listing begins any more under the same gate; it is made up for.
void frameUntar::showEnd(const Extraction& end, std::size_t logged) {
  if (end.toolRan) {
    leave();
    if (end.end == runtime::JobEnd::Stopped)
      services_.system.busy.whenFree(platform::Busy::Width::Relist,
                                     [&pane = pane_] { pane.refreshKeepList(); });
    else
      pane_.refreshKeepList();
  }
  if (end.logTells) runtime::showLogged(services_.user, services_.log, logged);
}

void frameUntar::cmdUnTarSelected_Click() {
  if (model_->tree().nodeCount() > 0) return ExtractArchive(Extract::Selected);
  services_.user.message("There are no files to extract, please select a tar file", runtime::Buttons::Ok,
                         runtime::Icon::None);
}

/// Toggle of an assistive tool, which passes the gate's filter.
void frameUntar::tarTree_Toggle(const QModelIndex& index) {
  if (services_.system.busy.held()) return;
  const bool ticked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
  model_->setData(index, ticked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

/// A job that runs stops first; the frame is left at its end.
void frameUntar::cmdCancel_Click() {
  leaving_ = services_.system.busy.held();
  if (leaving_) return services_.system.busy.requestStop();
  services_.user.letEventsRun();
  leave();
}

void frameUntar::leave() {
  leaving_ = false;
  closeInside();
  emit closed();
}

void frameUntar::selectAll(bool state) {
  model_->setAllChecked(state);
  ui_->tarTree->selectionModel()->clear();
}

bool frameUntar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    const QPoint position = static_cast<QMouseEvent*>(event)->position().toPoint();
    if (!ui_->tarTree->indexAt(position).isValid()) ui_->tarTree->selectionModel()->clear();
  }
  return QGroupBox::eventFilter(watched, event);
}

void frameUntar::tarTree_MouseUp(const QPoint& position) {
  if (services_.system.busy.held()) return;
  rightClickedNode_ = ArchiveTreeModel::node(ui_->tarTree->indexAt(position));
  actions_->update();
  if (rightClickedNode_ == 0) return mnuTarTreeRightClick_->hide();
  mnuTarTreeRightClick_->popup(ui_->tarTree->viewport()->mapToGlobal(position));
}

void frameUntar::mnuTarTreeProperties_Click() {
  if (rightClickedNode_ == 0) return;
  services_.user.message(model_->tree().tag(rightClickedNode_), runtime::Buttons::Ok, runtime::Icon::None,
                         model_->tree().text(rightClickedNode_) + " Properties");
}

}  // namespace archive
