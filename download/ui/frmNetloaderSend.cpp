#include <QScopedValueRollback>
#include <QTimer>
#include <algorithm>
#include <array>

#include "download/ui/frmNetloader.h"
#include "platform/desktop/Events.h"
#include "platform/desktop/Text.h"
#include "ui_frmNetloader.h"

namespace download {
namespace {

using platform::desktop::fromControl;
using platform::desktop::letEventsRun;
using platform::desktop::pollWait;
using platform::desktop::TcpState;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr const char* cannotSend = "Unable to Send";
constexpr const char* cannotSendFile = "Unable to send file";
constexpr const char* fileUnreadable = "The file could not be read";
constexpr const char* fileChanged = "The file was changed while it was being sent";

constexpr int lastTick = 50;  // of the reply time-out
constexpr int pause = 200;    // milliseconds, so that a status can be read
constexpr int betweenChunks = 1;
constexpr milliseconds resetWait(100);
constexpr milliseconds longestNap(1);

}  // namespace

void frmNetloader::cmdSend_Click() {
  if (handlersRunning_ > 0) return;
  const QScopedValueRollback<int> running(handlersRunning_, handlersRunning_ + 1);
  abortSend_ = false;
  tmrTimeout_->stop();  // an earlier request is over
  if (!inputIsValid()) return;
  ui_->cmdSend->setEnabled(false);
  Status("Connecting..");
  gotReply_ = false;
  phase_ = Phase::Connecting;
  path_ = fromControl(ui_->txtfile->text());
  address_ = joined(boxes_->address());
  tcpClient_->connectTo(platform::desktop::toControl(address_), ui_->txtPort->text());
  if (waitForConnection())
    askUnit();
  else
    connectionFailed();
}

bool frmNetloader::inputIsValid() {
  const auto isValid = [this](bool valid, const char* message) {
    if (!valid) tell(message, cannotSend);
    return valid;
  };
  const Address address = boxes_->address();
  const bool complete =
      std::none_of(address.begin(), address.end(), [](const auto& part) { return part.empty(); });
  return isValid(services_.system.files.fileExists(fromControl(ui_->txtfile->text())),
                 "Please Select A Valid File to Send") &&
         isValid(complete, "Please Enter A Valid Destination IP Address") &&
         isValid(!ui_->txtPort->text().isEmpty(), "Please Enter A Valid Destination Port");
}

bool frmNetloader::waitForConnection() {
  const PollBudget polls(now_);
  while (tcpClient_->state() == TcpState::Connecting && !polls.spent() && !abortSend_) {
    pollWait();
    ui_->ProgBar->setValue(polls.percent());
  }
  letEventsRun();
  return tcpClient_->state() == TcpState::Connected && !polls.spent() && !abortSend_;
}

void frmNetloader::connectionFailed() {
  tcpClient_->close();
  if (!abortSend_) {
    tell("Unable to connect to remote server", "Connection Error");
    services_.log.append(" Unable to connect to " + address_);
  }
  resetAll();
  if (abortSend_) unload();
}

void frmNetloader::askUnit() {
  Status("Connected");
  waitMs(pause);
  if (abortSend_) return unload();
  Status("Checking..");
  if (!openFile()) return;
  timeoutTicks_ = 0;
  reply_ = {};
  tmrTimeout_->start();
  // A reply may come before the request is known to be out: it is looked at afterwards.
  phase_ = Phase::Requesting;
  const Request request{getRemoteName(path_), sendFileSize_, chosenMode(),
                        fromControl(ui_->listNetO->topEntry())};
  if (!sendChunk(requestBytes(request))) {
    tmrTimeout_->stop();
    if (abortSend_) unload();
    return;
  }
  phase_ = Phase::Asking;
  tcpClient_DataArrival();
  if (phase_ == Phase::Asking && tcpClient_->state() != TcpState::Connected) resetAll();
}

/// From here on the file is the one that was opened, whatever happens to its name.
bool frmNetloader::openFile() {
  bytesSent_ = lastBytes_ = 0;
  file_.emplace(services_.system.files.openFile(path_));
  const std::optional<std::uint64_t> size = *file_ ? file_->size() : std::nullopt;
  sendFileSize_ = size.value_or(0);
  return size.has_value() || fileFailed(fileUnreadable);
}

void frmNetloader::tcpClient_DataArrival() {
  if (phase_ == Phase::Requesting) return;
  const std::string text = tcpClient_->receive();
  if (phase_ != Phase::Asking) return;
  switch (reply_.add(text)) {
    case Reply::Ok:
      return accepted();
    case Reply::NoSpace:
      return refused("There is not enough free flash space on the Kt500 series unit");
    case Reply::BadArgs:
      return refused("Bad arguments in the command packet");
    case Reply::Unknown:
      return resetAll();  // the time-out will say that the request failed
    case Reply::Undecided:
      return;
  }
}

/// While bytes are on their way, whoever sends them finds out: the last of them may have arrived.
void frmNetloader::tcpClient_Close() {
  if (phase_ != Phase::Requesting && phase_ != Phase::Sending) resetAll();
}

void frmNetloader::tcpClient_SendComplete() { sendDone_ = true; }

void frmNetloader::tmrTimeout_Timer() {
  if (gotReply_) return tmrTimeout_->stop();
  ++timeoutTicks_;
  ui_->ProgBar->setValue(percentOf(static_cast<std::uint64_t>(timeoutTicks_), lastTick));
  if (!abortSend_ && timeoutTicks_ < lastTick) return;
  tmrTimeout_->stop();
  if (!abortSend_) {
    phase_ = Phase::Idle;  // a reply that comes under the box is too late
    tell("Send file request failed", cannotSendFile);
  }
  resetAll();
  if (abortSend_) unload();
}

void frmNetloader::accepted() {
  const QScopedValueRollback<int> running(handlersRunning_, handlersRunning_ + 1);
  gotReply_ = true;
  phase_ = Phase::Sending;
  Status("Connected");
  letEventsRun();
  if (abortSend_) return unload();
  if (tcpClient_->state() == TcpState::Closed) return tellSocketError();
  ui_->lbletl->show();
  ui_->lblTime->show();
  SendFile();
}

void frmNetloader::refused(const char* why) {
  gotReply_ = true;
  phase_ = Phase::Idle;
  tell(why, cannotSendFile);
  resetAll();
}

void frmNetloader::SendFile() {
  Status("Sending..");
  letEventsRun();
  waitMs(pause);
  tmrTime_->start();
  if (streamFile() && waitUntilSent()) {
    services_.user.message("File Successfully Sent!", runtime::Buttons::Ok, runtime::Icon::Exclamation,
                           "Send Complete");
    services_.log.append(" Successfully sent " + runtime::GetFileName(path_) + " to " + address_);
  }
  unload();
}

/// True when all that was announced has been handed over, and that is the file as it still is.
bool frmNetloader::streamFile() {
  std::array<char, chunkSize> chunk;
  while (bytesSent_ < sendFileSize_ && !abortSend_) {
    const std::size_t most = std::min<std::uint64_t>(chunk.size(), sendFileSize_ - bytesSent_);
    const std::optional<std::size_t> count = file_->read(chunk.data(), most);
    if (!count || *count == 0) return fileFailed(count ? fileChanged : fileUnreadable);
    // A unit that has all that was announced keeps it: the last of it goes out of a file that is still the
    // same.
    const bool last = bytesSent_ + *count == sendFileSize_;
    if (last && file_->size() != sendFileSize_) return fileFailed(fileChanged);
    if (!sendChunk({chunk.data(), *count})) return false;
    bytesSent_ += *count;
    ui_->ProgBar->setValue(percentOf(bytesSent_, sendFileSize_));
    waitMs(betweenChunks);
    letEventsRun();
  }
  if (abortSend_) return false;
  return file_->size() == sendFileSize_ || fileFailed(fileChanged);
}

/// True only when the bytes were handed to the system.
bool frmNetloader::sendChunk(std::string_view bytes) {
  sendDone_ = false;
  if (!tcpClient_->send(bytes)) {
    tellSocketError();
    return false;
  }
  const PollBudget polls(now_);
  while (tcpClient_->state() != TcpState::Closed && !abortSend_ && !sendDone_ && !polls.spent()) pollWait();
  if (sendDone_) return true;
  if (abortSend_) return false;
  if (tcpClient_->state() == TcpState::Closed)
    tellSocketError();
  else
    tellSendTimedOut();
  return false;
}

/// Waits until the unit has all that was handed over. One that gives up on the last bytes resets the
/// connection: there is a moment to see that.
bool frmNetloader::waitUntilSent() {
  PollBudget polls(now_);
  std::int64_t left = tcpClient_->unsent();
  while (left > 0 && !abortSend_ && !polls.spent()) {
    pollWait();
    const std::int64_t now = tcpClient_->unsent();
    if (now < left) polls.restart();
    left = now;
  }
  const auto end = now_() + resetWait;
  while (left == 0 && tcpClient_->state() == TcpState::Connected && !abortSend_ && now_() < end)
    pollUntil(end);
  if (abortSend_) return false;
  if (left > 0) {
    tellSendTimedOut();
    return false;
  }
  if (tcpClient_->unsent() == 0) return true;
  tellSocketError();
  return false;
}

void frmNetloader::waitMs(int duration) {
  const auto end = now_() + milliseconds(duration);
  do pollUntil(end);
  while (now_() < end);
}

/// One nap, not several short ones: waking up costs more than a chunk.
void frmNetloader::pollUntil(steady_clock::time_point moment) {
  pollWait(std::clamp<steady_clock::duration>(moment - now_(), milliseconds(0), longestNap));
}

void frmNetloader::tellSocketError() {
  const platform::desktop::TcpError error = tcpClient_->error();
  tell(error.description, "Error #" + std::to_string(error.number));
  resetAll();
}

void frmNetloader::tellSendTimedOut() {
  tell("Send Request Timed Out\rConnection to Unit Lost", "Unable to send");
  resetAll();
}

bool frmNetloader::fileFailed(const char* why) {
  resetAll();
  tell(why, cannotSendFile);
  services_.log.append(" FAILED to send " + runtime::GetFileName(path_) + " to " + address_);
  return false;
}

void frmNetloader::tell(const std::string& text, const std::string& title) {
  services_.user.message(text, runtime::Buttons::Ok, runtime::Icon::Critical, title);
}

}  // namespace download
