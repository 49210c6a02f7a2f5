#include "download/ui/frmNetloader.h"

#include <QKeyEvent>
#include <QPointer>
#include <cmath>

#include "platform/ResolvedPath.h"
#include "platform/TcpConnection.h"
#include "platform/TypedPath.h"
#include "platform/desktop/Events.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "ui_frmNetloader.h"

namespace download {
namespace {

using platform::desktop::fromControl;
using platform::desktop::toControl;

constexpr int archiveHeight = 3210;  // twips
constexpr int plainFileHeight = 5355;
constexpr int bottomHeight = 480;
constexpr int twipsAnInch = 1440;
constexpr int shownPathLength = 50;  // digits
constexpr int shownOwnerLength = 10;
constexpr int shownDigits[] = {6, 4, 4};

/// The path that ls is given: a link is sent with its target's mode.
std::string listedPath(const platform::DriveTable& drives, const std::string& path) {
  const std::string target = platform::resolvedFolder(drives, path);
  return target == platform::resolvedPath(drives, path) ? path : target;
}

QStringList digitsFrom(int highest, int lowest) {
  QStringList digits;
  for (int digit = highest; digit >= lowest; --digit) digits.append(QString::number(digit));
  return digits;
}

void keepPlaceWhenHidden(std::initializer_list<QWidget*> widgets) {
  for (QWidget* widget : widgets) {
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
  }
}

}  // namespace

frmNetloader::frmNetloader(runtime::Services services, const std::string& sendFilePath, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::frmNetloader>()),
      services_(services),
      folder_(runtime::getFilePath(sendFilePath)) {
  using namespace platform::desktop;
  ui_->setupUi(this);
  boxes_ = std::make_unique<AddressBoxes>(
      std::array<AddressBox*, 4>{ui_->txtIP_0, ui_->txtIP_1, ui_->txtIP_2, ui_->txtIP_3});
  setWhileBusy(this, WhileBusy::Acts);  // Escape is Cancel, too; all else is disabled while a file is sent
  connectHandler(ui_->cmdSend, &QPushButton::clicked, this, services_.system.busy,
                 &frmNetloader::cmdSend_Click);
  connectCancel(ui_->cmdExit, &QPushButton::clicked, this, &frmNetloader::cmdExit_Click);
  connect(boxes_.get(), &AddressBoxes::portPasted, this, [this](const QString& port) {
    ui_->txtPort->setText(port);
    setPortShown(true);
  });
  wireAddresses();
  load(sendFilePath);
}

frmNetloader::~frmNetloader() = default;

void frmNetloader::wireAddresses() {
  AddressList* const list = ui_->listAddresses;
  connect(list, &AddressList::chosen, this, &frmNetloader::fillAddress);
  connect(list, &AddressList::accepted, ui_->cmdSend,
          [this] { ui_->cmdSend->setFocus(Qt::OtherFocusReason); });
  // What was being typed when a job began is not lost.
  connect(list, &AddressList::renamed, this,
          [this](const KnownAddress& entry) { changeAddresses(&KnownAddresses::rename, entry); });
  connect(list, &AddressList::forgetWanted, this, [this](const KnownAddress& entry) {
    if (services_.system.busy.held()) return;
    changeAddresses(&KnownAddresses::forget, entry);
    showAddresses();
  });
}

void frmNetloader::fillAddress(const KnownAddress& entry) {
  if (services_.system.busy.held()) return;
  boxes_->fill(entry.address);
  ui_->txtPort->setText(toControl(entry.port));
  if (entry.port != defaultPort) setPortShown(true);
}

/// Of what is stored now: another Pakrune may have added to it.
void frmNetloader::changeAddresses(void (KnownAddresses::*change)(const KnownAddress&),
                                   const KnownAddress& entry) {
  KnownAddresses known(services_.settings.lastAddresses());
  (known.*change)(entry);
  services_.settings.setLastAddresses(known.stored());
}

void frmNetloader::showAddresses() {
  ui_->listAddresses->setEntries(KnownAddresses(services_.settings.lastAddresses()).all());
  fitHeight();
}

void frmNetloader::load(const std::string& sendFilePath) {
  ui_->txtfile->setText(toControl(sendFilePath));
  services_.user.letEventsRun();
  boxes_->fill(splitAddress(services_.settings.lastIP()));
  QStringList owners;
  for (int number = 1; number <= 8; ++number) owners.append(QStringLiteral("usr%1").arg(number));
  ui_->listNetO->setEntries(owners);
  platform::desktop::ScrollList* const digits[] = {ui_->listNetP_0, ui_->listNetP_1, ui_->listNetP_2};
  for (int i = 0; i < 3; ++i) {
    const QStringList entries = digitsFrom(7, i == 0 ? 4 : 0);
    digits[i]->setEntries(entries);
    digits[i]->setTopIndex(static_cast<int>(entries.indexOf(QString::number(shownDigits[i]))));
  }
  const bool plainFile = !isArchive(sendFilePath);
  if (plainFile) loadFileMode();
  placeBottom(plainFile);
  showAddresses();
  if (!boxes_->focusFirstEmpty()) ui_->cmdSend->setFocus(Qt::OtherFocusReason);
}

void frmNetloader::loadFileMode() {
  const std::string path = fromControl(ui_->txtfile->text());
  const runtime::ToolResult listing =
      services_.api.RunCapture(services_.cygwin.cygwinBin(),
                               "ls -ln " + runtime::ToCygwinPath(listedPath(services_.system.drives, path)));
  // A tool that could not be started names no mode: the boxes stay as they are, clear.
  if (!listing.good()) return;
  using runtime::PermissionMode;
  const PermissionMode mode = PermissionMode::fromModeField(listing.text);
  ui_->checkOW->setChecked((mode.owner & PermissionMode::write) != 0);
  ui_->checkOE->setChecked((mode.owner & PermissionMode::execute) != 0);
  ui_->checkUR->setChecked((mode.group & PermissionMode::read) != 0);
  ui_->checkUW->setChecked((mode.group & PermissionMode::write) != 0);
  ui_->checkUE->setChecked((mode.group & PermissionMode::execute) != 0);
  ui_->checkER->setChecked((mode.everyone & PermissionMode::read) != 0);
  ui_->checkEW->setChecked((mode.everyone & PermissionMode::write) != 0);
  ui_->checkEE->setChecked((mode.everyone & PermissionMode::execute) != 0);
}

int frmNetloader::pixels(int twips) const {
  return static_cast<int>(std::lround(double(twips) * logicalDpiY() / twipsAnInch));
}

void frmNetloader::placeBottom(bool withPermissions) {
  const int digitWidth = fontMetrics().horizontalAdvance(QLatin1Char('0'));
  ui_->txtfile->setMinimumWidth(shownPathLength * digitWidth);
  ui_->listNetO->setMinimumWidth(shownOwnerLength * digitWidth);
  keepPlaceWhenHidden({ui_->lblPort, ui_->txtPort, ui_->lbletl, ui_->lblTime});
  ui_->framePerms->setVisible(withPermissions);
  ui_->frameBottom->setMinimumHeight(pixels(bottomHeight));
}

/// The sizes are the least ones: the layout asks for more where the font or the list needs it.
void frmNetloader::fitHeight() {
  const int height = pixels(ui_->framePerms->isHidden() ? archiveHeight : plainFileHeight);
  layout()->activate();
  setMinimumHeight(std::max(height, minimumSizeHint().height()));
  resize(std::max(width(), sizeHint().width()), minimumHeight());
}

runtime::PermissionMode frmNetloader::chosenMode() const {
  using runtime::PermissionMode;
  const auto digit = [](const QCheckBox* read, const QCheckBox* write, const QCheckBox* execute) {
    return (read->isChecked() ? PermissionMode::read : 0) + (write->isChecked() ? PermissionMode::write : 0) +
           (execute->isChecked() ? PermissionMode::execute : 0);
  };
  return {digit(ui_->checkOR, ui_->checkOW, ui_->checkOE), digit(ui_->checkUR, ui_->checkUW, ui_->checkUE),
          digit(ui_->checkER, ui_->checkEW, ui_->checkEE)};
}

SendOrder frmNetloader::chosenOrder() const {
  return {fromControl(ui_->txtfile->text()), boxes_->address(), fromControl(ui_->txtPort->text().trimmed()),
          chosenMode(), fromControl(ui_->listNetO->topEntry())};
}

/// What was typed becomes the program's path, which the box then shows; or the user is told why not. An empty
/// box is left to the checks of the job.
bool frmNetloader::readFile() {
  const std::string text = fromControl(ui_->txtfile->text());
  if (text.empty()) return true;
  const platform::TypedPath typed = platform::typedPath(services_.system.drives, text, folder_);
  if (typed) {
    ui_->txtfile->setText(toControl(typed.path));
    return true;
  }
  services_.user.message(typed.problem, runtime::Buttons::Ok, runtime::Icon::Critical, "Unable to Send");
  ui_->txtfile->setFocus(Qt::OtherFocusReason);
  return false;
}

void frmNetloader::cmdSend_Click() {
  if (!readFile()) return;
  const SendResult result = send();
  if (result.answered) {
    const SendOrder order = chosenOrder();
    changeAddresses(&KnownAddresses::use, {order.address, order.port, ""});
    showAddresses();
  }
  if (result.accepted || result.end == runtime::JobEnd::Stopped) unload();
}

SendResult frmNetloader::send() {
  const platform::Busy::Scope busy(services_.system.busy);
  const QPointer<QWidget> focus = focusWidget();
  setInputEnabled(false);
  platform::TcpConnection connection;
  const SendResult result = SendJob(services_, chosenOrder(), connection, *this).run();
  setInputEnabled(true);
  if (!focus.isNull()) focus->setFocus(Qt::OtherFocusReason);
  return result;
}

void frmNetloader::setInputEnabled(bool enabled) {
  boxes_->setEnabled(enabled);
  for (QWidget* control : std::initializer_list<QWidget*>{ui_->txtfile, ui_->txtPort, ui_->listNetO,
                                                          ui_->listAddresses, ui_->framePerms, ui_->cmdSend})
    control->setEnabled(enabled);
}

void frmNetloader::showStatus(const char* text) { ui_->lblStatus->setText(QString::fromLatin1(text)); }

void frmNetloader::showPercent(int percent) { ui_->ProgBar->setValue(percent); }

void frmNetloader::showTimeLeft(bool shown) {
  ui_->lbletl->setVisible(shown);
  ui_->lblTime->setVisible(shown);
}

void frmNetloader::setTimeLeft(std::uint64_t seconds) {
  ui_->lblTime->setText(QStringLiteral("%1 s").arg(seconds));
}

void frmNetloader::wait(std::chrono::nanoseconds nap) { platform::desktop::pollWait(nap); }

void frmNetloader::unload() {
  const Address address = boxes_->address();
  if (address != Address()) services_.settings.setLastIP(joined(address));
  done(QDialog::Rejected);
}

void frmNetloader::reject() { cmdExit_Click(); }

void frmNetloader::cmdExit_Click() {
  services_.system.busy.held() ? services_.system.busy.requestStop() : unload();
}

void frmNetloader::setPortShown(bool shown) {
  portShown_ = shown;
  ui_->lblPort->setVisible(shown);
  ui_->txtPort->setVisible(shown);
}

void frmNetloader::keyPressEvent(QKeyEvent* event) {
  constexpr Qt::KeyboardModifiers controlShift = Qt::ControlModifier | Qt::ShiftModifier;
  if (event->key() != Qt::Key_F10 || event->modifiers() != controlShift) return QDialog::keyPressEvent(event);
  setPortShown(!portShown_);
}

}  // namespace download
