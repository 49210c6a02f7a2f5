#pragma once

#include <QDialog>
#include <memory>
#include <string>
#include <string_view>

#include "download/PollBudget.h"
#include "download/Protocol.h"
#include "download/ui/AddressBoxes.h"
#include "platform/RegularFile.h"
#include "platform/desktop/TcpClient.h"
#include "runtime/Services.h"

class QTimer;
namespace Ui {
class frmNetloader;
}

namespace download {

/// "Download to Kt500 (Network)": sends one file to a terminal. Modal; made for one request. It hides when
/// the transfer has ended or was cancelled; exec() returns when its last handler has.
class frmNetloader : public QDialog {
  Q_OBJECT

 public:
  /// `sendFilePath`: full Windows path of the file to send.
  frmNetloader(runtime::Services services, const std::string& sendFilePath, QWidget* parent = nullptr);
  /// The same over a connection and a clock of the caller's.
  frmNetloader(runtime::Services services, const std::string& sendFilePath,
               std::unique_ptr<platform::desktop::TcpClient> client, Clock now, QWidget* parent = nullptr);
  ~frmNetloader() override;

  void reject() override;  ///< Escape and the close box: Cancel

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  enum class Phase { Idle, Connecting, Requesting, Asking, Sending };

  // frmNetloader.cpp: the window
  void wire();
  void load(const std::string& sendFilePath);
  void loadFileMode();
  void placeBottom(bool withPermissions);
  runtime::PermissionMode chosenMode() const;
  void Status(const char* text);
  void resetAll();
  void unload();
  void cmdExit_Click();
  void tmrTime_Timer();

  // frmNetloaderSend.cpp: the transfer
  void cmdSend_Click();
  bool inputIsValid();
  bool waitForConnection();
  void connectionFailed();
  void askUnit();
  bool openFile();
  void tcpClient_DataArrival();
  void tcpClient_Close();
  void tcpClient_SendComplete();
  void tmrTimeout_Timer();
  void accepted();
  void refused(const char* why);
  void SendFile();
  bool streamFile();
  bool sendChunk(std::string_view bytes);
  bool waitUntilSent();
  void waitMs(int milliseconds);
  void pollUntil(std::chrono::steady_clock::time_point moment);
  void tellSocketError();
  void tellSendTimedOut();
  bool fileFailed(const char* why);
  void tell(const std::string& text, const std::string& title);

  std::unique_ptr<Ui::frmNetloader> ui_;
  runtime::Services services_;
  std::unique_ptr<platform::desktop::TcpClient> tcpClient_;
  Clock now_;
  std::unique_ptr<AddressBoxes> boxes_;
  QTimer* tmrTimeout_;
  QTimer* tmrTime_;

  Phase phase_ = Phase::Idle;
  bool gotReply_ = false;
  bool abortSend_ = false;
  bool sendDone_ = false;
  bool portShown_ = false;
  bool unloaded_ = false;
  int handlersRunning_ = 0;  // a transfer's loops are on the stack
  int timeoutTicks_ = 0;
  std::uint64_t bytesSent_ = 0;
  std::uint64_t lastBytes_ = 0;
  std::uint64_t sendFileSize_ = 0;
  std::string path_;     // of the transfer that runs
  std::string address_;  // likewise
  ReplyCollector reply_;
  std::optional<platform::RegularFile> file_;
};

}  // namespace download
