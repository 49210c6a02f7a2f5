#include "shell/ui/frmMain.h"

#include <QCloseEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTreeView>

#include "archive/ui/frmTar.h"
#include "browser/ui/ApplyLayout.h"
#include "convert/ConvertJob.h"
#include "download/ui/frmNetloader.h"
#include "download/ui/frmPortErr.h"
#include "download/ui/frmWDXOptions.h"
#include "perms/ui/frmOwner.h"
#include "platform/SystemInfo.h"
#include "platform/desktop/Text.h"
#include "shell/ui/HelpKey.h"
#include "shell/ui/StartUp.h"
#include "shell/ui/frmAbout.h"
#include "shell/ui/frmOptions.h"
#include "ui_frmMain.h"

namespace shell {
namespace {

std::string adminReport() {
  if (runtime::GetOSVersion(platform::systemVersion()) != "NT")
    return "Unable to check for administrative priveleges on this version of Windows";
  return platform::isUserAnAdmin() ? "You have administrative privileges!" : "You are not an administrator";
}

bool isTextBox(const QWidget* widget) {
  const auto* line = qobject_cast<const QLineEdit*>(widget);
  return line != nullptr && !line->isReadOnly();
}

}  // namespace

frmMain::frmMain(Program& program, platform::desktop::FilePickers& pickers)
    : ui_(std::make_unique<Ui::frmMain>()), program_(program), pickers_(pickers) {
  ui_->setupUi(this);
  ui_->mnuspace6->setSeparator(true);
  ui_->mnuspace2->setSeparator(true);
  ui_->mnuFilterRightClick->menuAction()->setVisible(false);
  ui_->mnuUndoPermissions->setVisible(false);
  ui_->txtLog->hide();
  frameMain_ = new browser::frameMain(program.services(), program.selection, pickers, ui_->client);
  frameUntar_ = new archive::frameUntar(program.services(), *this, pickers, ui_->client);
  frameUntar_->hide();
  frameUntar_->setEnabled(false);
  wireActions();
  wireFrames();
  memory_.emplace(program.settings, *this, layout_, *frameMain_->findChild<QTreeView*>("DirPane")->header());
  memory_->restore();
}

frmMain::~frmMain() { program_.log.setOnEntry({}); }

bool frmMain::Load(const CommandLine& commandLine) {
  program_.log.start();
  if (!program_.confinementNote.empty()) program_.log.append(' ' + program_.confinementNote);
  connectLog();
  return StartUp(*this).run(commandLine);
}

void frmMain::connectLog() {
  ui_->txtLog->clear();
  showLogEntry(program_.log.text());
  program_.log.setOnEntry([this](const std::string& entry) { showLogEntry(entry); });
}

/// Its last line stays in sight while the log is hidden.
void frmMain::showLogEntry(const std::string& entry) {
  const QString text = platform::desktop::toShown(entry);
  ui_->txtLog->appendPlainText(text);
  ui_->txtLog->moveCursor(QTextCursor::End);
  ui_->lblLast->setText(text.section(QLatin1Char('\n'), -1));
}

/// Menus and keys.
void frmMain::wireActions() {
  using platform::desktop::WhileBusy;
  const auto mayDownload = [this] { return mayDownload_; };
  actions_ = new platform::desktop::ActionTable(
      *this, program_.system.busy,
      {
          {"mnuExit", [this] { close(); }, {}, WhileBusy::Acts},
          {"mnuAdmin", [this] { mnuAdmin_Click(); }},
          {"mnuUndoPermissions", [this] { mnuUndoPermissions_Click(); },
           [this] { return undo_ && !undo_->entries.empty(); }},
          {"mnuShowLog", [this] { mnuShowLog_Click(); }, {}, WhileBusy::Acts},
          {"mnuOptions", [this] { frmOptions(program_.services(), this).exec(); }},
          {"mnuwdxoptions", [this] { showfrmWDXOptions(sendFilePath_); }},
          {"mnuDownload", {}, mayDownload},
          {"mnuSerial", [this] { mnuSerial_Click(); }, mayDownload},
          {"mnuNetwork", [this] { mnuNetwork_Click(); }, mayDownload},
          {"mnuContent", [this] { mnuContent_Click(); }},
          {"mnuAbout", [this] { mnuAbout_Click(); }},
          {.name = "keyRefresh",
           .handler = [this] { refreshKeepList(); },
           .whileBusy = WhileBusy::Remembered,
           .keys = Qt::Key_F5},
          {.name = "keySelectAll", .handler = [this] { checkAllKey(); }, .keys = Qt::CTRL | Qt::Key_A},
      });
  ui_->lblHalvoren->installEventFilter(this);
  // A box that only shows text would keep Ctrl+A for itself.
  for (auto* box : findChildren<QWidget*>())
    if (!isTextBox(box)) box->installEventFilter(this);
}

void frmMain::wireFrames() {
  connect(frameMain_, &browser::frameMain::createTar, this, &frmMain::cmdTar_Click);
  connect(frameMain_, &browser::frameMain::extractTar, this, &frmMain::cmdExtract_Click);
  connect(frameMain_, &browser::frameMain::setPerms, this, &frmMain::cmdSetPerms_Click);
  connect(frameMain_, &browser::frameMain::setOwner, this, &frmMain::cmdSetOwner_Click);
  connect(frameMain_, &browser::frameMain::setGroup, this, &frmMain::cmdSetGroup_Click);
  connect(frameMain_, &browser::frameMain::dos2Unix, this, &frmMain::cmdDos2Unix_Click);
  connect(frameMain_, &browser::frameMain::archiveOpened, this, &frmMain::openArchive);
  connect(frameMain_, &browser::frameMain::selectionChanged, this, &frmMain::updateDownloadMenu);
  connect(frameMain_, &browser::frameMain::dividerDragged, this, &frmMain::divider_MouseMove);
  connect(frameMain_, &browser::frameMain::menuWanted, this, [this](QPoint at) { paneMenu_.open(at); });
  connect(frameUntar_, &archive::frameUntar::shown, this, &frmMain::showUntar);
  connect(frameUntar_, &archive::frameUntar::closed, this, &frmMain::hideUntar);
}

/// Ends the program also under a modal box, whose window is not closed.
void frmMain::endProgram() {
  end();
  QApplication::exit();
}

void frmMain::mnuShowLog_Click() {
  logShown_ = !logShown_;
  ui_->txtLog->setVisible(logShown_);
  ui_->lblLast->setVisible(!logShown_);
  ui_->mnuShowLog->setText(logShown_ ? QStringLiteral("Hide Log") : QStringLiteral("Show Log"));
  layOut();
}

void frmMain::mnuAdmin_Click() {
  program_.user.message(adminReport(), runtime::Buttons::Ok, runtime::Icon::None);
}

void frmMain::mnuContent_Click() { openHelp(program_, this); }

void frmMain::mnuAbout_Click() {
  auto* about = findChild<frmAbout*>();
  if (about == nullptr) about = new frmAbout(this);
  about->setAttribute(Qt::WA_DeleteOnClose);
  about->show();
  about->activateWindow();
}

void frmMain::mnuSerial_Click() {
  getDirPaneSelected();
  if (program_.selection.selectedCount() > 0) showfrmWDXOptions(program_.selection.selectedPaths.front());
}

void frmMain::mnuNetwork_Click() {
  getDirPaneSelected();
  if (program_.selection.selectedCount() > 0) showNetloader(program_.selection.selectedPaths.front());
}

void frmMain::netSetFile(const std::string& path) { showNetloader(path); }

void frmMain::showNetloader(const std::string& path) {
  sendFilePath_ = path;
  download::frmNetloader(program_.services(), path, this).exec();
}

void frmMain::showfrmWDXOptions(const std::string& path) {
  sendFilePath_ = path;
  download::frmWDXOptions form(program_.services(), pickers_, path, this);
  if (!form.endsProgram()) form.exec();
  if (form.endsProgram()) {
    close();
  } else if (form.wantsNetwork()) {
    showNetloader(path);
  } else if (form.started() == download::LoaderStart::PortBusy) {
    showPortErr(path);
  }
}

/// The dialog that sent is gone: the port and the rest come back from the settings file.
void frmMain::showPortErr(const std::string& path) {
  program_.user.letEventsRun();
  for (bool again = true; again && !ended_;) {
    download::frmWDXOptions settings(program_.services(), pickers_, path, this);
    again = !settings.endsProgram() &&
            download::frmPortErr(settings.comPort(), this).exec() == QDialog::Accepted &&
            settings.DownloadFile(path) == download::LoaderStart::PortBusy;
    if (settings.endsProgram()) close();
  }
}

void frmMain::cmdTar_Click() {
  archive::CheckTarSelection(program_.services(), *this, *this, pickers_, this);
}

bool frmMain::agreed(const std::string& question, const char* title) {
  return program_.user.message(question, runtime::Buttons::OkCancel, runtime::Icon::None, title,
                               runtime::Consequence::ReplacesSomething) == runtime::Answer::Ok;
}

perms::frmPermissions* frmMain::newPermissions() {
  perms::PermissionItems items{program_.selection.selectedPaths, true, GetDir1Path(), selectionText()};
  if (items.paths.empty()) {
    items.selected = false;
    for (const std::string& name : paneItems()) items.paths.push_back(items.folder + name);
  }
  auto* const form = new perms::frmPermissions(program_.services(), std::move(items), this);
  connect(form, &perms::frmPermissions::runBegun, this, [this] { frameMain_->actions().update(); });
  connect(form, &perms::frmPermissions::ran, this, [this](const perms::PermissionUndo& undo) {
    undo_ = undo;
    ui_->mnuUndoPermissions->setVisible(true);
    actions_->update();
  });
  return form;
}

void frmMain::cmdSetPerms_Click() {
  program_.cygwin.SetCygwinEnvironment();
  for (const char* tool : {"find.exe", "chmod.exe"})
    if (!perms::permissionToolFound(program_.services(), tool)) return;
  if (program_.selection.selectedPaths.empty()) {
    if (!perms::agreesToWholeFolder(program_.user, frameMain_->dir1Path())) return;
    selectAllRows();
  }
  const QPointer<perms::frmPermissions> form = newPermissions();
  form->initSetup();
  if (!form.isNull() && form->isVisible()) form->exec();
  delete form;
  relistAfterRun();
}

void frmMain::showPermissionsAtStart() {
  perms::frmPermissions* const form = newPermissions();
  form->setAttribute(Qt::WA_DeleteOnClose);
  form->setModal(false);
  form->setWindowTitle(QStringLiteral("Pakrune - Set Permissions"));
  connect(form, &QDialog::finished, this, &frmMain::relistAfterRun);
  form->initSetup();
  form->activateWindow();  // both windows came just now
}

void frmMain::relistAfterRun() {
  program_.system.busy.whenFree(platform::Busy::Width::Relist, [self = QPointer<frmMain>(this)] {
    if (self.isNull() || self->ended_) return;
    self->refreshKeepList();
    self->frameMain_->focusDirPane();
  });
}

void frmMain::mnuUndoPermissions_Click() {
  const platform::Busy::Scope busy(program_.system.busy);
  const perms::UndoResult result = perms::UndoJob(program_.services(), *undo_).run();
  if (result.end == runtime::JobEnd::Done) undo_->entries.clear();
  actions_->update();
  relistAfterRun();
}

void frmMain::cmdSetOwner_Click() {
  perms::OwnershipItems items{program_.selection.selectedPaths, GetDir1Path()};
  if (items.paths.empty() &&
      !agreed("This will change the owner for all files and subdirectories under:\r" + frameMain_->dir1Path(),
              "Warning.."))
    return;
  const QPointer<perms::frmOwner> form = new perms::frmOwner(program_.services(), std::move(items), this);
  form->exec();
  delete form;
}

void frmMain::cmdSetGroup_Click() {
  const platform::Busy::Scope busy(program_.system.busy);
  const perms::OwnershipItems items{program_.selection.selectedPaths, GetDir1Path()};
  frameMain_->actions().update();
  const std::string question =
      items.paths.empty()
          ? "This will set the group for all files and subdirectories under:\r" + frameMain_->dir1Path()
          : "This will set the group for " + std::to_string(items.paths.size()) + " selected files";
  if (agreed(question, "Setting Group..")) {
    frameMain_->setCaption("cmdSetGroup", "Setting..");
    perms::OwnershipJob(program_.services(), perms::groupToKT500(), items).run();
  }
  frameMain_->setCaption("cmdSetGroup", "Set Group");
}

void frmMain::cmdDos2Unix_Click() {
  const platform::Busy::Scope busy(program_.system.busy);
  frameMain_->actions().update();
  const auto begun = [this] { frameMain_->setCaption("cmdDos2Unix", "Converting.."); };
  convert::ConvertJob job(program_.services(), {program_.selection.selectedPaths, GetDir1Path()}, begun);
  const convert::ConvertResult result = job.run();
  frameMain_->setCaption("cmdDos2Unix", "dos2unix");
  if (result.end == runtime::JobEnd::Done) refreshKeepList();
}

void frmMain::cmdExtract_Click() { frameUntar_->open(); }

void frmMain::openArchive(const std::string& path) { frameUntar_->open(path); }

void frmMain::showUntar() {
  frameMain_->setEnabled(false);
  updateDownloadMenu();
  frameUntar_->show();
  frameUntar_->setEnabled(true);
  frameUntar_->raise();
}

void frmMain::hideUntar() {
  frameUntar_->hide();
  frameUntar_->setEnabled(false);
  frameMain_->setEnabled(true);
  frameMain_->focusDirPane();
  getDirPaneSelected();
}

void frmMain::updateDownloadMenu() {
  mayDownload_ = frameMain_->isEnabled() && oneFileSelected();
  actions_->update();
}

bool frmMain::oneFileSelected() const {
  const runtime::Selection& selection = program_.selection;
  return selection.selectedCount() == 1 && program_.system.files.fileExists(selection.selectedPaths.front());
}

void frmMain::checkAllKey() {
  if (frameMain_->isEnabled()) selectAllRows();
}

void frmMain::getDirPaneSelected() { frameMain_->getDirPaneSelected(); }
std::vector<std::string> frmMain::selectedPaths() const { return program_.selection.selectedPaths; }
std::string frmMain::selectionText() const { return frameMain_->selectionText(); }
std::vector<std::string> frmMain::paneItems() const { return frameMain_->paneItems(); }
std::string frmMain::GetDir1Path() const { return frameMain_->GetDir1Path(); }
void frmMain::selectAllRows() { frameMain_->checkAll_Click(); }
void frmMain::refreshKeepList() { frameMain_->refreshKeepList(); }
void frmMain::showEntry(const std::string& path) { frameMain_->showEntry(path); }
bool frmMain::setOwnerShown() const { return frameMain_->setOwnerShown(); }

void frmMain::layOut() {
  const double scale = browser::pixelsPerTwip(*this);
  browser::resizeLayout(layout_, size(), logShown_, scale);
  browser::applyLayout(*ui_->client, layout_, scale);
}

void frmMain::divider_MouseMove(int x) {
  const double scale = browser::pixelsPerTwip(*this);
  browser::dragDivider(layout_, x, scale);
  browser::applyLayout(*ui_->client, layout_, scale);
}

void frmMain::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  layOut();
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::FontChange) layOut();
}

/// A job that runs is asked to stop; the gate tells when it has, and the program ends then.
void frmMain::closeEvent(QCloseEvent* event) {
  program_.system.busy.requestEnd();
  if (program_.system.busy.held()) return event->ignore();
  event->accept();
  endProgram();
}

void frmMain::end() {
  ended_ = true;
  if (!isVisible()) return;  // nobody has chosen what it shows
  program_.settings.setInitDir(frameMain_->dir1Path());
  memory_->keep();
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  const bool idle = !program_.system.busy.held();
  if (watched == ui_->lblHalvoren && event->type() == QEvent::MouseButtonRelease && idle) {
    mnuAbout_Click();
    return true;
  }
  const bool selectAll = event->type() == QEvent::ShortcutOverride &&
                         static_cast<QKeyEvent*>(event)->matches(QKeySequence::SelectAll);
  if (selectAll && !isTextBox(qobject_cast<QWidget*>(watched))) {
    event->ignore();
    return true;
  }
  return QMainWindow::eventFilter(watched, event);
}

}  // namespace shell
