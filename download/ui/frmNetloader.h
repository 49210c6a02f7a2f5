#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "download/KnownAddresses.h"
#include "download/SendJob.h"
#include "download/ui/AddressBoxes.h"

namespace Ui {
class frmNetloader;
}

namespace download {

/// "Download to Kt500 (Network)": sends one file to a terminal. Modal; made for one request. It hides when
/// the transfer has ended or was cancelled.
class frmNetloader : public QDialog, private SendDisplay {
  Q_OBJECT

 public:
  /// `sendFilePath`: full Windows path of the file to send.
  frmNetloader(runtime::Services services, const std::string& sendFilePath, QWidget* parent = nullptr);
  ~frmNetloader() override;

  void reject() override;  ///< Escape and the close box: Cancel

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void load(const std::string& sendFilePath);
  void loadFileMode();
  void placeBottom(bool withPermissions);
  int pixels(int twips) const;
  void fitHeight();
  void wireAddresses();
  void fillAddress(const KnownAddress& entry);
  void showAddresses();
  void changeAddresses(void (KnownAddresses::*change)(const KnownAddress&), const KnownAddress& entry);
  runtime::PermissionMode chosenMode() const;
  SendOrder chosenOrder() const;
  bool readFile();
  SendResult send();
  void setInputEnabled(bool enabled);
  void setPortShown(bool shown);
  void unload();
  void cmdSend_Click();
  void cmdExit_Click();

  void showStatus(const char* text) override;
  void showPercent(int percent) override;
  void showTimeLeft(bool shown) override;
  void setTimeLeft(std::uint64_t seconds) override;
  void wait(std::chrono::nanoseconds nap) override;

  std::unique_ptr<Ui::frmNetloader> ui_;
  runtime::Services services_;
  std::unique_ptr<AddressBoxes> boxes_;
  std::string folder_;  // of the file that the dialog was made for
  bool portShown_ = false;
};

}  // namespace download
