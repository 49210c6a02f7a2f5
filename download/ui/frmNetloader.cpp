#include "download/ui/frmNetloader.h"

#include <QKeyEvent>
#include <QTimer>
#include <cmath>

#include "platform/ResolvedPath.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "ui_frmNetloader.h"

namespace download {
namespace {

using platform::desktop::TcpState;
using platform::desktop::toControl;

constexpr int timeoutInterval = 100;  // milliseconds
constexpr int timeInterval = 1000;
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
    : frmNetloader(services, sendFilePath, std::make_unique<platform::desktop::DesktopTcpClient>(),
                   std::chrono::steady_clock::now, parent) {}

frmNetloader::frmNetloader(runtime::Services services, const std::string& sendFilePath,
                           std::unique_ptr<platform::desktop::TcpClient> client, Clock now, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::frmNetloader>()),
      services_(services),
      tcpClient_(std::move(client)),
      now_(std::move(now)),
      tmrTimeout_(new QTimer(this)),
      tmrTime_(new QTimer(this)) {
  ui_->setupUi(this);
  boxes_ = std::make_unique<AddressBoxes>(
      std::array<QLineEdit*, 4>{ui_->txtIP_0, ui_->txtIP_1, ui_->txtIP_2, ui_->txtIP_3});
  wire();
  load(sendFilePath);
}

frmNetloader::~frmNetloader() = default;

void frmNetloader::wire() {
  using platform::desktop::connectHandler;
  using platform::desktop::TcpClient;
  tcpClient_->setObjectName(QStringLiteral("tcpClient"));
  tmrTimeout_->setObjectName(QStringLiteral("tmrTimeout"));
  tmrTime_->setObjectName(QStringLiteral("tmrTime"));
  tmrTimeout_->setInterval(timeoutInterval);
  tmrTime_->setInterval(timeInterval);
  const auto& busy = services_.system.busy;
  connectHandler(ui_->cmdSend, &QPushButton::clicked, this, busy, &frmNetloader::cmdSend_Click);
  connectHandler(ui_->cmdExit, &QPushButton::clicked, this, busy, &frmNetloader::cmdExit_Click);
  connectHandler(tmrTimeout_, &QTimer::timeout, this, busy, &frmNetloader::tmrTimeout_Timer);
  connectHandler(tmrTime_, &QTimer::timeout, this, busy, &frmNetloader::tmrTime_Timer);
  TcpClient* const client = tcpClient_.get();
  connectHandler(client, &TcpClient::dataArrival, this, busy, &frmNetloader::tcpClient_DataArrival);
  connectHandler(client, &TcpClient::closed, this, busy, &frmNetloader::tcpClient_Close);
  connectHandler(client, &TcpClient::sendComplete, this, busy, &frmNetloader::tcpClient_SendComplete);
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
}

void frmNetloader::loadFileMode() {
  const std::string path = platform::desktop::fromControl(ui_->txtfile->text());
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

/// The sizes are the least ones: the layout asks for more where the font needs it.
void frmNetloader::placeBottom(bool withPermissions) {
  const auto pixels = [this](int twips) {
    return static_cast<int>(std::lround(double(twips) * logicalDpiY() / twipsAnInch));
  };
  const int digitWidth = fontMetrics().horizontalAdvance(QLatin1Char('0'));
  ui_->txtfile->setMinimumWidth(shownPathLength * digitWidth);
  ui_->listNetO->setMinimumWidth(shownOwnerLength * digitWidth);
  keepPlaceWhenHidden({ui_->lblPort, ui_->txtPort, ui_->lbletl, ui_->lblTime});
  ui_->framePerms->setVisible(withPermissions);
  ui_->frameBottom->setMinimumHeight(pixels(bottomHeight));
  const int height = pixels(withPermissions ? plainFileHeight : archiveHeight);
  setMinimumHeight(std::max(height, minimumSizeHint().height()));
  resize(sizeHint().width(), minimumHeight());
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

void frmNetloader::Status(const char* text) { ui_->lblStatus->setText(QString::fromLatin1(text)); }

void frmNetloader::resetAll() {
  phase_ = Phase::Idle;
  if (tcpClient_->state() != TcpState::Closed) tcpClient_->close();
  ui_->lbletl->hide();
  ui_->lblTime->hide();
  tmrTime_->stop();
  Status("Disconnected");
  ui_->cmdSend->setEnabled(true);
  ui_->ProgBar->setValue(0);
}

void frmNetloader::unload() {
  if (unloaded_) return;
  unloaded_ = true;
  tmrTimeout_->stop();
  resetAll();
  const Address address = boxes_->address();
  if (address != Address()) services_.settings.setLastIP(joined(address));
  done(QDialog::Rejected);
}

void frmNetloader::reject() {
  if (!services_.system.busy.held()) cmdExit_Click();
}

void frmNetloader::cmdExit_Click() {
  abortSend_ = true;
  if (tcpClient_->state() == TcpState::Closed) return unload();
  services_.log.append(" Aborted sending " + getRemoteName(path_) + " to " + address_);
  tcpClient_->close();  // what waits for the unit sees abortSend_ and unloads
}

void frmNetloader::tmrTime_Timer() {
  if (const auto seconds = secondsLeft(sendFileSize_, bytesSent_, lastBytes_))
    ui_->lblTime->setText(QStringLiteral("%1 s").arg(*seconds));
  lastBytes_ = bytesSent_;
}

void frmNetloader::keyPressEvent(QKeyEvent* event) {
  constexpr Qt::KeyboardModifiers controlShift = Qt::ControlModifier | Qt::ShiftModifier;
  if (event->key() != Qt::Key_F10 || event->modifiers() != controlShift) return QDialog::keyPressEvent(event);
  portShown_ = !portShown_;
  ui_->lblPort->setVisible(portShown_);
  ui_->txtPort->setVisible(portShown_);
}

}  // namespace download
