#pragma once

#include <QDialog>
#include <memory>

#include "download/LoaderFiles.h"
#include "download/LoaderStart.h"
#include "platform/desktop/Actions.h"
#include "platform/desktop/FilePickers.h"

namespace Ui {
class frmWDXOptions;
}

namespace download {

/// "Download Options": sends one file over a serial line, by the loader that is found or shown. Made for one
/// request; nothing but the settings file outlives it. It need not be shown to start the loader once more.
class frmWDXOptions : public QDialog {
  Q_OBJECT

 public:
  /// Finds the loader and the saved settings, and may ask for the loader: look at endsProgram() afterwards.
  /// `sendFilePath`: full Windows path of the file to send.
  frmWDXOptions(const runtime::Services& services, platform::desktop::FilePickers& pickers,
                std::string sendFilePath, QWidget* parent = nullptr);
  ~frmWDXOptions() override;

  bool endsProgram() const { return endsProgram_; }    ///< a person would rather end than show the loader
  bool wantsNetwork() const { return wantsNetwork_; }  ///< the network download was chosen instead
  LoaderStart started() const { return started_; }     ///< what became of Send
  int comPort() const { return chosen().comPort; }
  LoaderStart DownloadFile(const std::string& path);

 private:
  void setupLoader();
  void showLoader();
  void choose(const SerialSettings& settings);
  SerialSettings chosen() const;
  void describePorts();
  void cmdSend_Click();
  void cmdNetwork_Click();

  std::unique_ptr<Ui::frmWDXOptions> ui_;
  runtime::Services services_;
  platform::desktop::FilePickers& pickers_;
  LoaderFiles files_;
  std::string sendFilePath_;
  std::string loaderPath_;
  bool endsProgram_ = false;
  bool wantsNetwork_ = false;
  LoaderStart started_ = LoaderStart::NotTried;
  platform::desktop::ActionTable* actions_ = nullptr;  // a child
};

}  // namespace download
