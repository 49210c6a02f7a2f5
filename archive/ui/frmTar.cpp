#include "archive/ui/frmTar.h"

#include <QPointer>
#include <utility>

#include "archive/FileDrop.h"
#include "archive/PackList.h"
#include "platform/TypedPath.h"
#include "platform/desktop/Clipboard.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/ImageList.h"
#include "platform/desktop/Text.h"
#include "runtime/ImageKeys.h"
#include "runtime/OwnerEntries.h"
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

/// What the button says while an archive is made. The form may be gone before that ends.
class BusyCaption {
 public:
  explicit BusyCaption(QPushButton* button) : button_(button), caption_(button->text()) {
    button->setText(QStringLiteral("Creating.."));
  }
  ~BusyCaption() {
    if (!button_.isNull()) button_->setText(caption_);
  }
  BusyCaption(const BusyCaption&) = delete;
  BusyCaption& operator=(const BusyCaption&) = delete;

 private:
  QPointer<QPushButton> button_;
  QString caption_;
};

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
  table_ = new platform::desktop::ActionTable(*this, services_.system.busy, actions());
  connectHandler(ui_->txtFileOut, &QLineEdit::textChanged, this, services_.system.busy,
                 &frmTar::txtFileOut_Change);
  Form_Load();
}

/// cmdTar is the default button: Enter runs it, too.
std::vector<platform::desktop::Action> frmTar::actions() {
  using platform::desktop::WhileBusy;
  const auto cancel = [this] { reject(); };
  const auto plainTar = [this] { return ui_->txtFileOut->text().endsWith(QLatin1String(".tar")); };
  return {{.name = "cmdGetOut", .handler = [this] { cmdGetOut_Click(); }},
          {.name = "checkOwner", .handler = [this] { table_->update(); }},
          {.name = "listOwner", .enabledWhen = [this] { return ui_->checkOwner->isChecked(); }},
          {.name = "optAppend", .enabledWhen = plainTar},
          {.name = "checkFolderContents", .enabledWhen = [this] { return selection_.selectedPaths.empty(); }},
          {.name = "cmdTar",
           .handler = [this] { cmdTar_Click(); },
           .enabledWhen = [this] { return !services_.system.busy.held(); }},
          {.name = "cmdCancel", .handler = cancel, .whileBusy = WhileBusy::Acts},
          {.name = "keyEscape", .handler = cancel, .whileBusy = WhileBusy::Acts, .keys = Qt::Key_Escape},
          {.name = "txtFileOut"},
          {.name = "Frame2"},
          {.name = "frameAttributes"},
          {.name = "frameOptionsC"},
          {.name = "Frame1"}};
}

frmTar::~frmTar() = default;

void frmTar::Form_Load() {
  QStringList owners;
  for (const runtime::OwnerEntry& entry : runtime::ownerEntries())
    owners.append(QString::fromLatin1(entry.name));
  if (!pane_.setOwnerShown()) owners.removeLast();
  ui_->listOwner->setEntries(owners);
  ui_->cmdGetOut->setIcon(platform::desktop::imageIcon(runtime::getImageIndex("fldrOpen")));
  ui_->lblAdd->setText(toShown(pane_.selectionText()));
  showFolderOption();
  ui_->txtFileOut->setText(
      toControl(proposedOutput(selection_, oneFolder(services_.system.files, selection_))));
  txtFileOut_Change();
}

/// One folder: whether its contents alone are packed. Otherwise: whether the folder shown is packed as a
/// whole, which only has a meaning with nothing selected.
void frmTar::showFolderOption() {
  const bool contents = oneFolder(services_.system.files, selection_);
  ui_->checkContentsOnly->setVisible(contents);
  ui_->checkFolderContents->setVisible(!contents);
}

void frmTar::reject() {
  platform::Busy& busy = services_.system.busy;
  if (busy.held())
    busy.requestStop();
  else
    QDialog::reject();
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
  table_->update();
  if (!ui_->optAppend->isEnabled()) ui_->optNew->setChecked(true);
}

PackSettings frmTar::settings() const {
  PackSettings settings;
  settings.outputPath = fromControl(ui_->txtFileOut->text());
  settings.append = ui_->optAppend->isChecked();
  settings.setOwner = ui_->checkOwner->isChecked();
  settings.setGroup = ui_->checkGroup->isChecked();
  settings.newestTime = ui_->checkTime->isChecked();
  settings.ownerId = runtime::ownerEntries().at(static_cast<std::size_t>(ui_->listOwner->topIndex())).id;
  settings.contentsOnly = ui_->checkContentsOnly->isChecked();
  settings.parentFolder = ui_->checkFolderContents->isChecked();
  settings.stageUsr8 = stageUsr8_;
  return settings;
}

/// The text of the box becomes the program's path, which the box then shows; or the user is told why not.
bool frmTar::readOutput() {
  const platform::TypedPath typed = platform::typedPath(
      services_.system.drives, fromControl(ui_->txtFileOut->text()), selection_.currentFolder);
  if (typed) {
    ui_->txtFileOut->setText(toControl(typed.path));
    return true;
  }
  services_.user.message(typed.problem, runtime::Buttons::Ok, runtime::Icon::Critical, "Output file error..");
  ui_->txtFileOut->setFocus();
  return false;
}

void frmTar::cmdTar_Click() {
  const QPointer<frmTar> self(this);
  if (!readOutput() || self.isNull()) return;
  const PackResult made = createArchive();
  if (self.isNull()) return;
  if (made.madeNew) ui_->optNew->setChecked(true);
  if (made.unknownExtension) ui_->txtFileOut->setFocus();
  const bool ends = services_.system.busy.endRequested();
  if (isMade(made) && !ends) handOver(made.path);
}

/// One job from the click until the pane shows the archive.
PackResult frmTar::createArchive() {
  const runtime::Services services = services_;
  runtime::FilePane& pane = pane_;  // outlives the form
  const platform::Busy::Scope busy(services.system.busy);
  const BusyCaption caption(ui_->cmdTar);
  table_->update();
  const PackResult made = PackJob(services, selection_, settings()).run();
  if (!isMade(made)) return made;
  pane.refreshKeepList();
  pane.showEntry(made.path);
  return made;
}

/// The archive's further way. The form has done its work, whatever the downloads say.
void frmTar::handOver(const std::string& path) {
  const QPointer<frmTar> self(this);
  const bool copy = ui_->checkCopyToClipboard->isChecked();
  const bool serial = ui_->checkSerialDownload->isChecked();
  const bool network = ui_->checkNetworkDownload->isChecked();
  runtime::Downloads& downloads = downloads_;  // outlives the form
  if (copy && !ClipboardCopyFile(services_.system.drives, path))
    services_.log.append(" Unable to copy to clipboard: " + path);
  if (serial) downloads.showfrmWDXOptions(path);
  if (network && !self.isNull()) hide();
  if (network) downloads.netSetFile(path);
  if (!self.isNull()) accept();
}

bool ClipboardCopyFile(const platform::DriveTable& drives, const std::string& path) {
  return platform::desktop::offerFiles(drives, fileDropBlock(path));
}

bool CheckTarSelection(const runtime::Services& services, runtime::FilePane& pane,
                       runtime::Downloads& downloads, platform::desktop::FilePickers& pickers,
                       QWidget* parent) {
  std::optional<PackSelection> selection = checkSelection(services, pane);
  if (!selection) return false;
  const QPointer<frmTar> form = new frmTar(services, pane, downloads, pickers, std::move(*selection), parent);
  form->exec();
  delete form;
  return true;
}

}  // namespace archive
