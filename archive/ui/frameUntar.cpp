#include "archive/ui/frameUntar.h"

#include <QMenu>
#include <QMouseEvent>

#include "archive/ExtractCommand.h"
#include "archive/Extractor.h"
#include "archive/ui/frmGetOutFolder.h"
#include "archive/ui/frmOverwriteFile.h"
#include "platform/HeldName.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "runtime/ArchiveKind.h"
#include "ui_frameUntar.h"

namespace archive {
namespace {

using platform::desktop::connectHandler;
using platform::desktop::fromControl;
using platform::desktop::toControl;

constexpr const char* archiveFilter =
    "TAR File (*.tar)|*.tar|GZIP Compressed (*.tgz, *.gz, *.z, *.taz)|*.tgz; *.tar.gz;  *.z; *.taz|"
    "BZIP2 Compressed (*.bz2, *.bz, *.tbz2, *.tbz)|*.bz2; *.bz; *.tbz2; *.tbz|All files (*.*)|*.*|";

}  // namespace

/// A listing that goes into the frame's own bar.
class frameUntar::Progress : public ListingProgress {
 public:
  explicit Progress(frameUntar& frame) : frame_(frame), run_(++frame.listingRun_) {}
  void showPercent(float percent) override {
    frame_.ui_->pbTarRefresh->setValue(qRound(percent));
    frame_.services_.user.letEventsRun();
  }
  bool cancelled() const override { return frame_.cancelRequested_ || replaced(); }
  bool replaced() const { return run_ != frame_.listingRun_; }

 private:
  frameUntar& frame_;
  unsigned run_;
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
  wire();
  wireTree();
  reset();
}

frameUntar::~frameUntar() = default;

void frameUntar::wire() {
  const auto button = [this](QPushButton* sender, void (frameUntar::*handler)()) {
    connectHandler(sender, &QPushButton::clicked, this, services_.system.busy, handler);
  };
  button(ui_->cmdGetFile, &frameUntar::cmdGetFile_Click);
  button(ui_->cmdSelectOut, &frameUntar::cmdSelectOut_Click);
  button(ui_->cmdRefresh, &frameUntar::cmdRefresh_Click);
  button(ui_->cmdUnTar, &frameUntar::cmdUnTar_Click);
  button(ui_->cmdUnTarSelected, &frameUntar::cmdUnTarSelected_Click);
  button(ui_->cmdCancel, &frameUntar::cmdCancel_Click);
  button(ui_->cmdSelectAllTar, &frameUntar::cmdSelectAllTar_Click);
  button(ui_->cmdSelectNoneTar, &frameUntar::cmdSelectNoneTar_Click);
}

void frameUntar::wireTree() {
  mnuTarTreeRightClick_->setObjectName(QStringLiteral("mnuTarTreeRightClick"));
  QAction* properties = mnuTarTreeRightClick_->addAction(QStringLiteral("Properties"));
  properties->setObjectName(QStringLiteral("mnuTarTreeProperties"));
  connectHandler(properties, &QAction::triggered, this, services_.system.busy,
                 &frameUntar::mnuTarTreeProperties_Click);
  connect(ui_->tarTree, &QTreeView::customContextMenuRequested, this, &frameUntar::tarTree_MouseUp);
  connect(ui_->tarTree, &QTreeView::collapsed, model_,
          [this](const QModelIndex& index) { model_->setFolderImage(index, "fldr"); });
  connect(ui_->tarTree, &QTreeView::expanded, model_,
          [this](const QModelIndex& index) { model_->setFolderImage(index, "fldrOpen"); });
  ui_->tarTree->viewport()->installEventFilter(this);
}

void frameUntar::reset() {
  ui_->txtOutLocation->setText(QString::fromLatin1(noFolderChosen));
  ui_->txtFileIn->setText(QString::fromLatin1(noArchiveChosen));
  ui_->frameTarRefreshLabel->hide();
  ui_->pbTarRefresh->hide();
  model_->showHint(QStringLiteral("Click 'Refresh Contents' to display Tar file contents"));
  listed_.reset();
  rightClickedNode_ = 0;
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

std::string frameUntar::archivePath() const { return fromControl(ui_->txtFileIn->text()); }

void frameUntar::focusOn(Focus focus) {
  if (focus == Focus::None) return;
  QLineEdit* box = focus == Focus::ArchivePath ? ui_->txtFileIn : ui_->txtOutLocation;
  box->setFocus(Qt::OtherFocusReason);
  box->selectAll();
}

void frameUntar::enableListing(bool enabled) {
  for (QWidget* control : {static_cast<QWidget*>(ui_->cmdRefresh), static_cast<QWidget*>(ui_->cmdGetFile),
                           static_cast<QWidget*>(ui_->txtFileIn)})
    control->setEnabled(enabled);
}

void frameUntar::enableExtraction(bool enabled) {
  for (QWidget* control : {ui_->cmdUnTar, ui_->cmdUnTarSelected, ui_->cmdSelectAllTar, ui_->cmdSelectNoneTar})
    control->setEnabled(enabled);
}

/// The controls that had the keyboard focus may have been off meanwhile: it goes where the work goes on.
void frameUntar::endListing(bool complete) {
  enableListing(true);
  ui_->pbTarRefresh->hide();
  ui_->frameTarRefreshLabel->hide();
  ui_->tarTree->show();
  (complete ? static_cast<QWidget*>(ui_->tarTree) : ui_->txtFileIn)->setFocus(Qt::OtherFocusReason);
}

/// True when the tree shows the whole archive.
bool frameUntar::ListArchive() {
  const std::string path = archivePath();
  const CheckedArchive checked = checkArchive(services_, path, "Please select a Tar file first");
  if (!checked.kind) {
    focusOn(checked.focus);
    return false;
  }
  cancelRequested_ = false;
  rightClickedNode_ = 0;
  listed_.reset();
  model_->clear();
  ui_->frameTarRefreshLabel->show();
  enableExtraction(false);
  services_.user.letEventsRun();
  enableListing(false);
  return readArchive(*checked.kind, path);
}

bool frameUntar::readArchive(runtime::ArchiveKind kind, const std::string& path) {
  Progress progress(*this);
  const Listed identified = identity(path);
  std::optional<std::string> listing = readListing(services_, kind, path);
  if (!listing) {
    endListing(false);
    return false;
  }
  ui_->tarTree->hide();
  ui_->pbTarRefresh->show();
  progress.showPercent(0);
  ArchiveTree tree = fillTree(services_, kind, path, std::move(*listing), progress);
  if (progress.replaced()) return false;
  model_->setTree(std::move(tree));
  endListing(!progress.cancelled());
  if (progress.cancelled()) return false;
  enableExtraction(true);
  listed_ = identified;
  return true;
}

frameUntar::Listed frameUntar::identity(const std::string& path) const {
  return {path, services_.system.files.fileSize(path), services_.system.files.modifiedTime(path)};
}

/// The tree of the archive that the box names now; listed again unless the tree shows that already.
const ArchiveTree* frameUntar::currentTree() {
  const bool listed = listed_ && *listed_ == identity(archivePath());
  setEnabled(true);  // Cancel works while it lists
  const bool there = listed || ListArchive();
  setEnabled(false);
  return there ? &model_->tree() : nullptr;
}

void frameUntar::ExtractArchive(bool all) {
  OverwriteDialogs asker(window());
  setEnabled(false);  // events run between the questions
  const ExtractResult result = Extractor(services_, asker)
                                   .ExtractArchive(archivePath(), fromControl(ui_->txtOutLocation->text()),
                                                   all, [this] { return currentTree(); });
  setEnabled(true);
  if (!result.started) return focusOn(result.focus);
  emit closed();
  pane_.refreshKeepList();
}

void frameUntar::cmdUnTarSelected_Click() {
  if (model_->tree().nodeCount() > 0) return ExtractArchive(false);
  services_.user.message("There are no files to extract, please select a tar file", runtime::Buttons::Ok,
                         runtime::Icon::None);
}

void frameUntar::cmdGetFile_Click() {
  const std::string chosen =
      pickers_.openFile({"Select Tar File", runtime::getFilePath(archivePath()), archiveFilter, 4, ""});
  if (chosen.empty()) return;
  ui_->txtFileIn->setText(toControl(chosen));
  ListArchive();
}

void frameUntar::cmdSelectOut_Click() {
  const std::string start = runtime::getFilePath(archivePath());
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

void frameUntar::cmdCancel_Click() {
  cancelRequested_ = true;
  services_.user.letEventsRun();
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
  if (rightClickedNode_ == 0) return mnuTarTreeRightClick_->hide();
  mnuTarTreeRightClick_->popup(ui_->tarTree->viewport()->mapToGlobal(position));
}

void frameUntar::mnuTarTreeProperties_Click() {
  if (rightClickedNode_ == 0) return;
  services_.user.message(model_->tree().tag(rightClickedNode_), runtime::Buttons::Ok, runtime::Icon::None,
                         model_->tree().text(rightClickedNode_) + " Properties");
}

}  // namespace archive
