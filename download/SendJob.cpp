#include "download/SendJob.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "runtime/FileClass.h"

namespace download {
namespace {

using platform::ConnectionState;
using runtime::JobEnd;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr const char* disconnected = "Disconnected";
constexpr const char* cannotSend = "Unable to Send";
constexpr const char* cannotSendFile = "Unable to send file";
constexpr const char* fileUnreadable = "The file could not be read";
constexpr const char* fileChanged = "The file was changed while it was being sent";

constexpr milliseconds statusPause(200);  // so that a status can be read
constexpr milliseconds chunkPause(1);
constexpr milliseconds replyTick(100);
constexpr int replyTicks = 50;
constexpr seconds closeWait(2);
constexpr seconds updateEvery(1);
constexpr milliseconds longestNap(1);

}  // namespace

SendJob::SendJob(const runtime::Services& services, SendOrder order, platform::Connection& connection,
                 SendDisplay& display, Clock now)
    : services_(services),
      order_(std::move(order)),
      address_(joined(order_.address)),
      connection_(connection),
      display_(display),
      now_(std::move(now)) {}

SendResult SendJob::run() {
  stop_ = services_.system.busy.stop();
  if (stop_.requested()) return {JobEnd::Stopped};
  if (!inputIsValid()) return {JobEnd::Refused};
  if (connect() && request() && awaitReply() && sendFile())
    result_.end = JobEnd::Done;
  else if (stop_.requested())
    result_.end = JobEnd::Stopped;
  return result_;
}

bool SendJob::inputIsValid() {
  const auto isValid = [this](bool valid, const char* message) {
    if (!valid) services_.user.message(message, runtime::Buttons::Ok, runtime::Icon::Critical, cannotSend);
    return valid;
  };
  const bool complete = std::none_of(order_.address.begin(), order_.address.end(),
                                     [](const std::string& part) { return part.empty(); });
  return isValid(services_.system.files.fileExists(order_.path), "Please Select A Valid File to Send") &&
         isValid(complete, "Please Enter A Valid Destination IP Address") &&
         isValid(!order_.port.empty(), "Please Enter A Valid Destination Port");
}

bool SendJob::connect() {
  display_.showStatus("Connecting..");
  connection_.connectTo(address_, order_.port);
  const PollBudget polls(now_);
  while (connection_.state() == ConnectionState::Connecting && !polls.spent()) {
    if (aborted()) return false;
    step(now_() + longestNap);
    display_.showPercent(polls.percent());
  }
  if (aborted()) return false;
  if (connection_.state() == ConnectionState::Connected) return true;
  connection_.close();
  failed("Unable to connect to remote server", "Connection Error",
         explainNoConnection(attempt(), connection_.error()));
  services_.log.append(" Unable to connect to " + address_);
  disconnect();
  return false;
}

bool SendJob::request() {
  display_.showStatus("Connected");
  pause(statusPause);
  if (aborted()) return false;
  display_.showStatus("Checking..");
  return openFile() && sendChunk(requestBytes(requested()));
}

/// From here on the file is the one that was opened, whatever happens to its name.
bool SendJob::openFile() {
  file_.emplace(services_.system.files.openFile(order_.path));
  const int systemError = errno;
  return *file_ || fileFailed(fileUnreadable, explainUnopened(attempt(), order_.path, systemError));
}

/// An unknown reply or a close counts as none: the connection goes, and the time-out tells.
bool SendJob::awaitReply() {
  ReplyCollector collector;
  const auto start = now_();
  std::optional<NoReply> gone;
  for (int tick = 1; tick <= replyTicks; ++tick) {
    while (now_() < start + tick * replyTick) {
      const Reply reply = collector.add(connection_.receive());
      if (aborted()) return false;
      if (reply != Reply::Undecided && reply != Reply::Unknown) return actOn(reply);
      if (!gone && (reply == Reply::Unknown || connection_.state() != ConnectionState::Connected)) {
        disconnect();
        gone = reply == Reply::Unknown ? NoReply::OtherWords : NoReply::HungUp;
      }
      step(start + tick * replyTick);
    }
    display_.showPercent(percentOf(static_cast<std::uint64_t>(tick), replyTicks));
  }
  failed("Send file request failed", cannotSendFile,
         explainNoReply(attempt(), gone.value_or(NoReply::Silence), collector.start()));
  disconnect();
  return false;
}

bool SendJob::actOn(Reply reply) {
  result_.answered = true;
  if (reply == Reply::Ok) return true;
  failed(reply == Reply::NoSpace ? "There is not enough free flash space on the Kt500 series unit"
                                 : "Bad arguments in the command packet",
         cannotSendFile, explainRefusal(attempt(), reply));
  disconnect();
  return false;
}

bool SendJob::sendFile() {
  display_.showStatus("Connected");
  step(now_());
  if (aborted()) return false;
  if (connection_.state() == ConnectionState::Closed) return socketFailed();
  result_.accepted = true;
  display_.showTimeLeft(true);
  display_.showStatus("Sending..");
  pause(statusPause);
  nextUpdate_ = now_() + updateEvery;
  if (aborted() || !streamFile() || !awaitEnd()) return false;
  services_.user.message("File Successfully Sent!", runtime::Buttons::Ok, runtime::Icon::Exclamation,
                         "Send Complete");
  services_.log.append(" Successfully sent " + runtime::GetFileName(order_.path) + " to " + address_);
  return true;
}

bool SendJob::streamFile() {
  std::array<char, chunkSize> chunk;
  const std::uint64_t size = file_->size();
  while (sent_ < size) {
    const std::size_t most = std::min<std::uint64_t>(chunk.size(), size - sent_);
    const std::optional<std::size_t> count = file_->read(chunk.data(), most);
    if (!count || *count == 0) return brokenOff(count ? fileChanged : fileUnreadable);
    // A unit that has all that was announced keeps it: the last of it goes out of a file that is still the
    // same.
    const bool last = sent_ + *count == size;
    if (last && !file_->unchanged()) return brokenOff(fileChanged);
    handed_ += *count;
    if (!sendChunk({chunk.data(), *count})) return false;
    sent_ += *count;
    display_.showPercent(percentOf(sent_, size));
    pause(chunkPause);
    if (aborted()) return false;
  }
  return file_->unchanged() || brokenOff(fileChanged);
}

/// True only when the bytes were handed to the system.
bool SendJob::sendChunk(std::string_view bytes) {
  if (!connection_.send(bytes)) return socketFailed();
  const auto waiting = [this] {
    return connection_.state() != ConnectionState::Closed && !connection_.sendComplete();
  };
  return waitWhile(waiting) && (connection_.sendComplete() || socketFailed());
}

/// Waits until the unit has all that was handed over, and has closed: one that cannot keep it resets the
/// connection, and there is a moment to see that.
bool SendJob::awaitEnd() {
  connection_.finishSending();
  if (!waitWhile([this] { return unsent() > 0; })) return false;
  const auto until = now_() + closeWait;
  while (connection_.state() == ConnectionState::Connected && now_() < until) {
    if (aborted()) return false;
    step(until);
  }
  return connection_.unsent() == 0 || socketFailed();
}

/// True once the job was asked to stop.
bool SendJob::aborted() {
  if (!stop_.requested()) return false;
  if (connection_.state() != ConnectionState::Closed)
    services_.log.append(" Aborted sending " + getRemoteName(order_.path) + " to " + address_);
  disconnect();
  return true;
}

void SendJob::disconnect() {
  connection_.close();
  display_.showTimeLeft(false);
  display_.showStatus(disconnected);
  display_.showPercent(0);
}

bool SendJob::failed(const std::string& text, const std::string& title, const std::string& explanation) {
  services_.user.explainedMessage(text, explanation, runtime::Icon::Critical, title);
  return false;
}

bool SendJob::brokenOff(const char* why) { return fileFailed(why, explainFile(attempt(), order_.path)); }

bool SendJob::fileFailed(const char* why, const std::string& explanation) {
  disconnect();
  failed(why, cannotSendFile, explanation);
  services_.log.append(" FAILED to send " + runtime::GetFileName(order_.path) + " to " + address_);
  return false;
}

bool SendJob::socketFailed() {
  const platform::ConnectionError error = connection_.error();
  failed(error.description, "Error #" + std::to_string(error.number), explainLoss(attempt(), error));
  disconnect();
  return false;
}

/// False when it was stopped, or when the unit has taken nothing for too long: a slow one lives as long as it
/// takes something.
bool SendJob::waitWhile(const std::function<bool()>& waiting) {
  PollBudget polls(now_);
  std::int64_t left = unsent();
  while (waiting()) {
    if (aborted()) return false;
    if (polls.spent()) {
      failed("Send Request Timed Out\rConnection to Unit Lost", "Unable to send", explainLoss(attempt(), {}));
      disconnect();
      return false;
    }
    step(now_() + longestNap);
    const std::int64_t now = unsent();
    if (now < left) polls.restart();
    left = now;
  }
  return true;
}

std::int64_t SendJob::unsent() {
  const std::int64_t waiting = connection_.unsent();
  const auto missing = static_cast<std::uint64_t>(std::max<std::int64_t>(waiting, 0));
  if (waiting >= 0 && missing < handed_) taken_ = std::max(taken_, handed_ - missing);
  return waiting;
}

Request SendJob::requested() const {
  return {getRemoteName(order_.path), file_ ? file_->size() : 0, order_.mode, order_.owner};
}

Attempt SendJob::attempt() const { return {address_, order_.port, requested(), taken_}; }

void SendJob::pause(milliseconds duration) {
  const auto end = now_() + duration;
  do step(end);
  while (now_() < end && !stop_.requested());
}

/// One nap, not several short ones: waking up costs more than a chunk.
void SendJob::step(steady_clock::time_point until) {
  display_.wait(std::clamp<steady_clock::duration>(until - now_(), milliseconds(0), longestNap));
  connection_.look();
  if (!result_.accepted) return;
  connection_.receive();  // means nothing any more
  updateTimeLeft();
}

void SendJob::updateTimeLeft() {
  if (!nextUpdate_ || now_() < *nextUpdate_) return;
  if (const auto left = secondsLeft(file_->size(), sent_, sentBefore_)) display_.setTimeLeft(*left);
  sentBefore_ = sent_;
  nextUpdate_ = now_() + updateEvery;
}

}  // namespace download
