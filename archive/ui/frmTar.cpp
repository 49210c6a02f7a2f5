#include "archive/ui/frmTar.h"

#include <QPointer>
#include <utility>

#include "archive/FileDrop.h"
#include "platform/desktop/Clipboard.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/ImageList.h"
#include "platform/desktop/Text.h"
#include "runtime/ImageKeys.h"
#include "ui_frmTar.h"

namespace archive {
namespace {

using platform::desktop::connectHandler;
using platform::desktop::fromControl;
using platform::desktop::toControl;
using platform::desktop::toShown;

constexpr const char* outputFilter =
    "GZIP Compressed (*.tgz, *.gz, *.z, *.taz)|*.tgz; *.tar.gz;  *.z; *.taz|TAR File (*.tar)|*.tar|"
    "BZIP2 Compressed (*.bz2, *.bz, *.tbz2, *.tbz)|*.bz2; *.bz; *.tbz2; *.tbz|";

/// While an archive is made: the button is off and says so. The form may be gone before it ends.
class BusyButton {
 public:
  BusyButton(QPushButton* button, bool& busy) : button_(button), busy_(busy), caption_(button->text()) {
    busy_ = true;
    button->setEnabled(false);
    button->setText(QStringLiteral("Creating.."));
  }
  ~BusyButton() {
    if (button_.isNull()) return;
    busy_ = false;
    button_->setText(caption_);
    button_->setEnabled(true);
  }
  BusyButton(const BusyButton&) = delete;
  BusyButton& operator=(const BusyButton&) = delete;

 private:
  QPointer<QPushButton> button_;
  bool& busy_;
  QString caption_;
};

bool oneFolder(const runtime::Services& services, const PackSelection& selection) {
  return selection.selectedPaths.size() == 1 &&
         services.system.files.folderExists(selection.selectedPaths.front());
}

bool acceptedAnyway(const runtime::Services& services, const std::string& path) {
  if (!services.system.files.entryExists(path)) return true;
  return services.user.message("'" + path + "' already exists", runtime::Buttons::OkCancel,
                               runtime::Icon::None, "Select Anyway?",
                               runtime::Consequence::ReplacesSomething) == runtime::Answer::Ok;
}

}  // namespace

frmTar::frmTar(const runtime::Services& services, runtime::FilePane& pane, runtime::Downloads& downloads,
               platform::desktop::FilePickers& pickers, PackSelection selection, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::frmTar>()),
      services_(services),
      pane_(pane),
      downloads_(downloads),
      pickers_(pickers),
      selection_(std::move(selection)),
      stageUsr8_(usr8Support(services.settings.usr8())) {
  ui_->setupUi(this);
  const auto wire = [this](auto* sender, auto signal, auto handler) {
    connectHandler(sender, signal, this, services_.system.busy, handler);
  };
  wire(ui_->cmdGetOut, &QPushButton::clicked, &frmTar::cmdGetOut_Click);
  wire(ui_->txtFileOut, &QLineEdit::textChanged, &frmTar::txtFileOut_Change);
  wire(ui_->checkOwner, &QCheckBox::toggled, &frmTar::checkOwner_Click);
  wire(ui_->cmdTar, &QPushButton::clicked, &frmTar::cmdTar_Click);  // the default button: Enter runs it too
  wire(ui_->cmdCancel, &QPushButton::clicked, &frmTar::reject);
  Form_Load();
}

frmTar::~frmTar() = default;

void frmTar::Form_Load() {
  QStringList owners;
  for (const OwnerEntry& entry : ownerEntries()) owners.append(QString::fromLatin1(entry.name));
  if (!pane_.setOwnerShown()) owners.removeLast();
  ui_->listOwner->setEntries(owners);
  ui_->cmdGetOut->setIcon(platform::desktop::imageIcon(runtime::getImageIndex("fldrOpen")));
  ui_->lblAdd->setText(toShown(pane_.selectionText()));
  showFolderOption();
  ui_->txtFileOut->setText(toControl(proposedOutput(selection_, oneFolder(services_, selection_))));
  txtFileOut_Change();
}

/// One folder: whether its contents alone are packed. Otherwise: whether the folder shown is packed as a
/// whole, which only has a meaning with nothing selected.
void frmTar::showFolderOption() {
  const bool contents = oneFolder(services_, selection_);
  ui_->checkContentsOnly->setVisible(contents);
  ui_->checkFolderContents->setVisible(!contents);
  ui_->checkFolderContents->setEnabled(selection_.selectedPaths.empty());
}

void frmTar::reject() {
  if (!busy_ && !services_.system.busy.held()) QDialog::reject();
}

void frmTar::cmdGetOut_Click() {
  const QPointer<frmTar> self(this);
  const std::string path = chooseOutput();
  if (!self.isNull() && !path.empty()) ui_->txtFileOut->setText(toControl(path));
}

/// Asked again until the user takes a name or cancels (empty).
std::string frmTar::chooseOutput() const {
  const runtime::Services services = services_;
  platform::desktop::FilePickers& pickers = pickers_;
  int filter = 1;
  const platform::desktop::FileRequest request{
      "Create Tar File", selection_.currentFolder, outputFilter, 1, "", &filter};
  while (true) {
    std::string path = pickers.saveFile(request);
    if (!path.empty()) path = withArchiveExtension(path, filter);
    if (path.empty() || acceptedAnyway(services, path)) return path;
  }
}

void frmTar::txtFileOut_Change() {
  const bool plainTar = ui_->txtFileOut->text().endsWith(QLatin1String(".tar"));
  ui_->optAppend->setEnabled(plainTar);
  if (!plainTar) ui_->optNew->setChecked(true);
}

void frmTar::checkOwner_Click() { ui_->listOwner->setEnabled(ui_->checkOwner->isChecked()); }

PackSettings frmTar::settings() const {
  PackSettings settings;
  settings.outputPath = fromControl(ui_->txtFileOut->text());
  settings.append = ui_->optAppend->isChecked();
  settings.setOwner = ui_->checkOwner->isChecked();
  settings.setGroup = ui_->checkGroup->isChecked();
  settings.ownerId = ownerEntries().at(static_cast<std::size_t>(ui_->listOwner->topIndex())).id;
  settings.contentsOnly = ui_->checkContentsOnly->isChecked();
  settings.parentFolder = ui_->checkFolderContents->isChecked();
  settings.stageUsr8 = stageUsr8_;
  return settings;
}

void frmTar::cmdTar_Click() {
  if (busy_) return;
  const QPointer<frmTar> self(this);
  const BusyButton busy(ui_->cmdTar, busy_);
  const PackSettings chosen = settings();
  PackRunner runner(services_);
  const PackOutcome outcome = runner.create(chosen, selection_, [self] {
    if (!self.isNull()) self->ui_->optNew->setChecked(true);
  });
  if (self.isNull()) return;
  if (outcome == PackOutcome::UnknownExtension) ui_->txtFileOut->setFocus();
  if (outcome == PackOutcome::Created) handOver(wholeOutputPath(chosen, selection_));
}

/// The archive's further way. The form has done its work, whatever the downloads say.
void frmTar::handOver(const std::string& outputPath) {
  const QPointer<frmTar> self(this);
  const bool copy = ui_->checkCopyToClipboard->isChecked();
  const bool serial = ui_->checkSerialDownload->isChecked();
  const bool network = ui_->checkNetworkDownload->isChecked();
  runtime::FilePane& pane = pane_;  // these outlive the form
  runtime::Downloads& downloads = downloads_;
  const runtime::Services services = services_;
  pane.refreshKeepList();
  if (copy && !ClipboardCopyFile(services.system.drives, outputPath))
    services.log.append(" Unable to copy to clipboard: " + outputPath);
  if (serial) downloads.showfrmWDXOptions(outputPath);
  if (network && !self.isNull()) hide();
  if (network) downloads.netSetFile(outputPath);
  if (!self.isNull()) accept();
}

bool ClipboardCopyFile(const platform::DriveTable& drives, const std::string& path) {
  return platform::desktop::offerFiles(drives, fileDropBlock(path));
}

TarSelection CheckTarSelection(const runtime::Services& services, runtime::FilePane& pane,
                               runtime::Downloads& downloads, platform::desktop::FilePickers& pickers,
                               QWidget* parent, bool show) {
  const TarSelection selected = checkSelection(services, pane);
  if (selected == TarSelection::Stopped || !show) return selected;
  const bool whole = selected == TarSelection::WholeFolder;
  const QPointer<frmTar> form =
      new frmTar(services, pane, downloads, pickers, packSelection(pane, whole), parent);
  form->exec();
  delete form;
  return selected;
}

}  // namespace archive
