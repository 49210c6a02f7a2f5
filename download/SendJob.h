#pragma once

#include <functional>

#include "download/Explanation.h"
#include "download/PollBudget.h"
#include "download/Protocol.h"
#include "platform/Connection.h"
#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace download {

/// Whoever shows a transfer.
class SendDisplay {
 public:
  virtual ~SendDisplay() = default;
  virtual void showStatus(const char* text) = 0;
  virtual void showPercent(int percent) = 0;
  virtual void showTimeLeft(bool shown) = 0;
  virtual void setTimeLeft(std::uint64_t seconds) = 0;
  /// Pending events run; when there are none, it sleeps for `nap`.
  virtual void wait(std::chrono::nanoseconds nap) = 0;
};

/// What is sent, and where to.
struct SendOrder {
  std::string path;  ///< of the file, in Windows form
  Address address;
  std::string port;
  runtime::PermissionMode mode;
  std::string owner;  ///< an account of the terminal
};

struct SendResult {
  runtime::JobEnd end = runtime::JobEnd::Failed;
  bool answered = false;  ///< what is at the address speaks as a unit does, whatever it said
  bool accepted = false;  ///< the unit had agreed: for another try the dialog is opened anew
};

/// Sends one file to a terminal (docs/protocol.md), over a connection and a clock of the caller's.
class SendJob {
 public:
  SendJob(const runtime::Services& services, SendOrder order, platform::Connection& connection,
          SendDisplay& display, Clock now = std::chrono::steady_clock::now);
  SendResult run();

 private:
  bool inputIsValid();
  bool connect();
  bool request();
  bool openFile();
  bool awaitReply();
  bool actOn(Reply reply);
  bool sendFile();
  bool streamFile();
  bool sendChunk(std::string_view bytes);
  bool awaitEnd();

  bool aborted();
  void disconnect();
  bool failed(const std::string& text, const std::string& title, const std::string& explanation);
  bool brokenOff(const char* why);
  bool fileFailed(const char* why, const std::string& explanation);
  bool socketFailed();
  bool waitWhile(const std::function<bool()>& waiting);
  std::int64_t unsent();
  Request requested() const;
  Attempt attempt() const;
  void pause(std::chrono::milliseconds duration);
  void step(std::chrono::steady_clock::time_point until);
  void updateTimeLeft();

  runtime::Services services_;
  SendOrder order_;
  std::string address_;
  platform::Connection& connection_;
  SendDisplay& display_;
  Clock now_;
  platform::Stop stop_;

  SendResult result_;
  std::optional<platform::RegularFile> file_;
  std::uint64_t sent_ = 0;                                           // bytes of the file
  std::uint64_t handed_ = 0;                                         // with those that wait
  std::uint64_t taken_ = 0;                                          // that the unit has
  std::uint64_t sentBefore_ = 0;                                     // when the time left was last shown
  std::optional<std::chrono::steady_clock::time_point> nextUpdate_;  // of the time left
};

}  // namespace download
