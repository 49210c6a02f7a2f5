#include "perms/ui/frmPermissions.h"

#include <QKeyEvent>
#include <QPointer>

#include "perms/ui/frmPreview.h"
#include "platform/desktop/ReadableColour.h"
#include "platform/desktop/Text.h"
#include "platform/desktop/WaitCursor.h"
#include "runtime/IsExecutable.h"
#include "ui_frmPermissions.h"

namespace perms {
namespace {

using platform::desktop::toShown;

constexpr std::size_t ownerRead = 0;
constexpr std::size_t ownerBoxes = 3;
constexpr const char* mixedTip = "The selected items differ in this permission";

}  // namespace

frmPermissions::frmPermissions(const runtime::Services& services, PermissionItems items, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::frmPermissions>()),
      services_(services),
      items_(std::move(items)) {
  ui_->setupUi(this);
  boxes_ = {ui_->checkOR, ui_->checkOW, ui_->checkOE, ui_->checkUR, ui_->checkUW,
            ui_->checkUE, ui_->checkER, ui_->checkEW, ui_->checkEE};
  for (QCheckBox* box : boxes_) {
    const auto* const frame = qobject_cast<QGroupBox*>(box->parentWidget());
    box->setAccessibleName(frame->title() + ' ' + box->text());
  }
  keepSize();
  fillExecutables();
  wireActions();
  // The form hears keys before its controls do.
  for (QWidget* control : findChildren<QWidget*>()) control->installEventFilter(this);
  installEventFilter(this);
}

frmPermissions::~frmPermissions() = default;

void frmPermissions::wireActions() {
  using platform::desktop::WhileBusy;
  const auto idle = [this] { return !running_; };
  const auto manual = [this] { return !running_ && ui_->optManual->isChecked(); };
  const auto modeChosen = [this] { actions_->update(); };
  std::vector<platform::desktop::Action> rows = {
      {"optAuto", modeChosen},
      {"optManual", modeChosen},
      {"Frame1", {}, idle},
      {"Frame2", {}, idle},
      {"Frame3", {}, idle},
      {"checkSubDirs"},
      {"listExecutables"},
      {"cmdPreview", [this] { cmdPreview_Click(); }},
      {"cmdSetP", [this] { cmdSetP_Click(); }, idle},
      {"cmdCancel", [this] { cmdCancel_Click(); }, {}, WhileBusy::Acts},
  };
  static constexpr std::array<const char*, modeBoxes> names = {
      "checkOR", "checkOW", "checkOE", "checkUR", "checkUW", "checkUE", "checkER", "checkEW", "checkEE"};
  for (std::size_t box = ownerRead + 1; box < modeBoxes; ++box)
    rows.push_back({names[box], [this, box] { box_Click(box); }, manual});
  actions_ = new platform::desktop::ActionTable(*this, services_.system.busy, std::move(rows));
  setWhileBusy(this, WhileBusy::Acts);  // Escape is Cancel, too; all else asks the gate
  connect(ui_->listExecutables, &QListWidget::itemClicked, this, &frmPermissions::listExecutables_Click);
}

/// Qt 6.4 under X11 puts a window that grows just after it came up into the corner of the screen, now and
/// then.
void frmPermissions::keepSize() {
  QSizePolicy policy = ui_->checkSubDirs->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  ui_->checkSubDirs->setSizePolicy(policy);
}

void frmPermissions::fillExecutables() {
  for (const std::string_view extension : runtime::executableExtensions) {
    auto* const entry = new QListWidgetItem(toShown(extension), ui_->listExecutables);
    entry->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    entry->setCheckState(Qt::Checked);
  }
  ui_->listExecutables->setFixedWidth(ui_->listExecutables->sizeHint().width());
  listExecutables_Click();
}

/// No entry stays highlighted; the checks are for show.
void frmPermissions::listExecutables_Click() {
  ui_->listExecutables->viewport()->update();
  ui_->listExecutables->clearSelection();
}

void frmPermissions::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  ui_->frameWait->setGeometry(rect());
}

bool frmPermissions::eventFilter(QObject* watched, QEvent* event) {
  const bool down = event->type() == QEvent::KeyPress;
  if ((down || event->type() == QEvent::KeyRelease) &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Control)
    ctrlDown_ = down;
  if (event->type() == QEvent::WindowDeactivate) ctrlDown_ = false;  // its release goes elsewhere
  return QDialog::eventFilter(watched, event);
}

void frmPermissions::initSetup() {
  const QPointer<frmPermissions> self(this);
  const platform::Busy::Scope busy(services_.system.busy);
  ui_->lblItems->setText(toShown(items_.label));
  for (std::size_t box = ownerRead + 1; box < modeBoxes; ++box) setBox(box, Box::Clear);
  QRadioButton* const mode = automaticByDefault(services_.settings) ? ui_->optAuto : ui_->optManual;
  mode->setChecked(true);
  setRunning(true);
  ui_->frameWait->raise();
  ui_->frameWait->show();
  show();
  services_.user.letEventsRun();
  const ShownModes shown = shownModes(services_, items_.paths);
  if (self.isNull()) return;
  showModes(shown);
  ui_->frameWait->hide();
  setRunning(false);
  mode->setFocus();  // not the first one of the group, which Space would choose
  if (services_.system.busy.stopRequested()) QDialog::reject();
}

void frmPermissions::showModes(const ShownModes& shown) {
  ui_->checkSubDirs->setVisible(shown.folderInvolved);
  for (std::size_t box = ownerRead + 1; box < modeBoxes; ++box) setBox(box, shown.boxes[box]);
}

void frmPermissions::setBox(std::size_t box, Box state) {
  boxes_[box]->setChecked(state == Box::Checked);
  showMixed(box, state == Box::Mixed);
}

/// Colour, tip and what assistive tools say.
void frmPermissions::showMixed(std::size_t box, bool mixed) {
  QPalette colours;
  if (mixed) {
    const QColor shadow = platform::desktop::readableColour(palette().color(QPalette::Shadow),
                                                            palette().color(QPalette::Window));
    colours.setColor(QPalette::Active, QPalette::WindowText, shadow);
    colours.setColor(QPalette::Inactive, QPalette::WindowText, shadow);
  }
  boxes_[box]->setPalette(colours);
  boxes_[box]->setToolTip(mixed ? QLatin1String(mixedTip) : QString());
  boxes_[box]->setAccessibleDescription(boxes_[box]->toolTip());
}

/// Read goes for group and everyone, the others for all three classes.
void frmPermissions::box_Click(std::size_t box) {
  showMixed(box, false);
  if (!ctrlDown_) return;
  for (std::size_t other = box % ownerBoxes; other < modeBoxes; other += ownerBoxes)
    if (other != ownerRead) setBox(other, boxes_[box]->isChecked() ? Box::Checked : Box::Clear);
}

PermissionChoice frmPermissions::choice() const {
  const auto digit = [this](std::size_t first) {
    using runtime::PermissionMode;
    return (boxes_[first]->isChecked() ? PermissionMode::read : 0) +
           (boxes_[first + 1]->isChecked() ? PermissionMode::write : 0) +
           (boxes_[first + 2]->isChecked() ? PermissionMode::execute : 0);
  };
  return {ui_->optAuto->isChecked(), {digit(0), digit(3), digit(6)}, ui_->checkSubDirs->isChecked()};
}

void frmPermissions::setRunning(bool running) {
  running_ = running;
  actions_->update();
}

void frmPermissions::cmdPreview_Click() {
  const QPointer<frmPreview> preview = new frmPreview(services_, this);
  preview->fill(items_, choice());
  if (!preview.isNull() && preview->isVisible()) preview->exec();
  delete preview;
}

void frmPermissions::cmdSetP_Click() {
  const QPointer<frmPermissions> self(this);
  const platform::Busy::Scope busy(services_.system.busy);
  const platform::desktop::WaitCursor hourglass;
  const QString caption = ui_->cmdSetP->text();
  setWindowTitle(QStringLiteral("Setting Permissions.."));
  ui_->cmdSetP->setText(QStringLiteral("Setting.."));
  setRunning(true);
  emit runBegun();
  const PermissionResult result = PermissionJob(services_, items_, choice()).run();
  if (self.isNull()) return;
  emit ran(result.undo);
  ui_->cmdSetP->setText(caption);
  setWindowTitle(caption);
  setRunning(false);
  accept();
}

/// A run that goes on is asked to stop; the dialog unloads at its end.
void frmPermissions::cmdCancel_Click() { running_ ? services_.system.busy.requestStop() : QDialog::reject(); }

}  // namespace perms
