#include "archive/ui/frameUntar.h"

#include <QMenu>
#include <QMouseEvent>

#include "archive/ExtractCommand.h"
#include "archive/ui/frmGetOutFolder.h"
#include "archive/ui/frmOverwriteFile.h"
#include "platform/HeldName.h"
#include "platform/TypedPath.h"
#include "platform/desktop/Text.h"
#include "runtime/ShowLogged.h"
#include "ui_frameUntar.h"

namespace archive {
namespace {

using platform::desktop::fromControl;
using platform::desktop::toControl;

constexpr const char* archiveFilter =
    "TAR File (*.tar)|*.tar|GZIP Compressed (*.tgz, *.gz, *.z, *.taz)|*.tgz; *.tar.gz;  *.z; *.taz|"
    "BZIP2 Compressed (*.bz2, *.bz, *.tbz2, *.tbz)|*.bz2; *.bz; *.tbz2; *.tbz|All files (*.*)|*.*|";

}  // namespace

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
  ui_->tarTree->setModel(model_);
  wireTree();
  wire();
  reset();
}

frameUntar::~frameUntar() = default;

void frameUntar::wire() {
  using platform::desktop::WhileBusy;
  const auto does = [this](void (frameUntar::*handler)()) { return [this, handler] { (this->*handler)(); }; };
  const auto idle = [this] { return !listing_; };
  const auto listed = [this] { return extractable_; };
  actions_ = new platform::desktop::ActionTable(
      *this, services_.system.busy,
      {{"txtFileIn", {}, idle},
       {"txtOutLocation"},
       {"cmdGetFile", does(&frameUntar::cmdGetFile_Click), idle},
       {"cmdSelectOut", does(&frameUntar::cmdSelectOut_Click)},
       {"cmdRefresh", does(&frameUntar::cmdRefresh_Click), idle},
       {"cmdUnTar", does(&frameUntar::cmdUnTar_Click), listed},
       {"cmdUnTarSelected", does(&frameUntar::cmdUnTarSelected_Click), listed},
       {"cmdCancel", does(&frameUntar::cmdCancel_Click), {}, WhileBusy::Acts},
       {"cmdSelectAllTar", does(&frameUntar::cmdSelectAllTar_Click), listed},
       {"cmdSelectNoneTar", does(&frameUntar::cmdSelectNoneTar_Click), listed},
       {"cmdBack", does(&frameUntar::cmdBack_Click), idle},
       {"mnuTarTreeProperties", does(&frameUntar::mnuTarTreeProperties_Click)},
       {"mnuTarTreeOpen", does(&frameUntar::mnuTarTreeOpen_Click), [this] { return canOpenInside(); }}});
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
  proposal_.clear();
}

void frameUntar::open() {
  reset();
  emit shown();
  const std::vector<std::string> selected = pane_.selectedPaths();
  if (selected.size() != 1 || !runtime::opensAsArchive(selected.front())) return;
  ui_->txtFileIn->setText(toControl(selected.front()));
  ui_->txtOutLocation->setText(toControl(proposedOutFolder(selected.front())));
  ListArchive();
}

void frameUntar::open(const std::string& archivePath) {
  reset();
  emit shown();
  ui_->txtFileIn->setText(toControl(archivePath));
  ui_->txtOutLocation->setText(toControl(proposedOutFolder(archivePath)));
  ListArchive();
}

/// What the boxes hold, behind readBox. Their first texts are no paths.
frameUntar::Paths frameUntar::typedPaths() const {
  return {fromControl(ui_->txtFileIn->text()), fromControl(ui_->txtOutLocation->text())};
}

/// What was typed becomes the program's path, which the box then shows; or the user is told why not. An empty
/// archive box is left to the checks of the job.
bool frameUntar::readBox(Focus which) {
  QLineEdit* const box = which == Focus::ArchivePath ? ui_->txtFileIn : ui_->txtOutLocation;
  const std::string text = fromControl(box->text());
  if (text == noArchiveChosen || text == noFolderChosen) return true;
  if (text.empty() && which == Focus::ArchivePath) return true;
  const platform::TypedPath typed = platform::typedPath(services_.system.drives, text, pane_.GetDir1Path());
  if (typed) {
    box->setText(toControl(typed.path));
    return true;
  }
  services_.user.message(typed.problem, runtime::Buttons::Ok, runtime::Icon::Critical, "Error");
  focusOn(which);
  return false;
}

void frameUntar::focusOn(Focus focus) {
  if (focus == Focus::None) return;
  QLineEdit* box = focus == Focus::ArchivePath ? ui_->txtFileIn : ui_->txtOutLocation;
  box->setFocus(Qt::OtherFocusReason);
  box->selectAll();
}

void frameUntar::ListArchive() {
  if (!readBox(Focus::ArchivePath)) return;
  const std::string path = archiveToList();
  leaving_ = false;
  Focus focus = Focus::None;
  {
    const platform::Busy::Scope busy(services_.system.busy);
    focus = list(path);
  }
  leaving_ ? leave() : focusOn(focus);
}

/// Under the gate of its caller.
Focus frameUntar::list(const std::string& path) {
  Progress progress(*this, path);
  Listing listing = ListingJob(services_, path, progress).run();
  const Focus focus = listing.focus;
  if (listing_) endListing(std::move(listing));
  return focus;
}

void frameUntar::beginListing(const std::string& path) {
  reading_ = listedFile(services_.system.files, path);
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

/// The controls that had the keyboard focus may have been off meanwhile: it goes where the work goes on.
void frameUntar::endListing(Listing listing) {
  const bool whole = listing.end == runtime::JobEnd::Done;
  listing_ = false;
  extractable_ = whole;
  actions_->update();
  ui_->pbTarRefresh->hide();
  ui_->frameTarRefreshLabel->hide();
  model_->setTree(std::move(listing.tree));
  ui_->tarTree->show();
  (whole ? static_cast<QWidget*>(ui_->tarTree) : ui_->txtFileIn)->setFocus(Qt::OtherFocusReason);
  if (!whole) return;
  listed_ = reading_;
  if (inside_.empty()) proposal_ = proposedOutFolder(listed_->path);
}

/// Only where the tree shows a whole archive.
bool frameUntar::showsOlderFile() const {
  return *listed_ != listedFile(services_.system.files, listed_->path);
}

/// Box, ticks and tree as they are now; a tree that shows another archive, or an older one, is listed again.
void frameUntar::ExtractArchive(Extract what) {
  if (!readBox(Focus::ArchivePath) || !readBox(Focus::OutputFolder)) return;
  const Paths paths = typedPaths();
  if (!inside_.empty() && inside_.outermost().file.path != paths.archive) closeInside();
  const std::string archive = inside_.empty() ? paths.archive : inside_.path();
  ExtractRequest request{what, archive, paths.outFolder};
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
  if (leaving_ && !end.toolRan) return leave();
  if (!end.toolRan) focusOn(end.focus);
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

void frameUntar::cmdGetFile_Click() {
  const std::string chosen = pickers_.openFile(
      {"Select Tar File", runtime::getFilePath(typedPaths().archive), archiveFilter, 4, ""});
  if (chosen.empty()) return;
  closeInside();
  ui_->txtFileIn->setText(toControl(chosen));
  ListArchive();
}

void frameUntar::cmdSelectOut_Click() {
  const std::string start = runtime::getFilePath(typedPaths().archive);
  std::string chosen;
  if (pickers_.canAskForFolder()) {
    chosen = pickers_.folder("Please select an output folder.", start);
  } else {
    frmGetOutFolder dialog(services_, start, window());
    dialog.exec();
    chosen = dialog.chosen();
  }
  if (!chosen.empty()) ui_->txtOutLocation->setText(toControl(chosen));
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
  ui_->tarTree->setCurrentIndex({});
}

bool frameUntar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    const QPoint position = static_cast<QMouseEvent*>(event)->position().toPoint();
    if (!ui_->tarTree->indexAt(position).isValid()) ui_->tarTree->setCurrentIndex({});
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
