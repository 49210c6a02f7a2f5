#include "download/ui/frmWDXOptions.h"

#include <QRadioButton>

#include "platform/SerialPorts.h"
#include "platform/desktop/Locale.h"
#include "platform/desktop/Text.h"
#include "ui_frmWDXOptions.h"

namespace download {

using platform::desktop::toControl;

frmWDXOptions::frmWDXOptions(const runtime::Services& services, platform::desktop::FilePickers& pickers,
                             std::string sendFilePath, QWidget* parent)
    : QDialog(parent),
      ui_(std::make_unique<Ui::frmWDXOptions>()),
      services_(services),
      pickers_(pickers),
      files_(services),
      sendFilePath_(std::move(sendFilePath)) {
  ui_->setupUi(this);
  describePorts();
  setupLoader();
  ui_->txtfile->setText(toControl(sendFilePath_));
  const auto complete = [this] { return chosen().comPort != 0 && !chosen().baudRate.empty(); };
  std::vector<platform::desktop::Action> rows = {
      {"cmdSend", [this] { cmdSend_Click(); }, complete},
      {"cmdNetwork", [this] { cmdNetwork_Click(); }},
      {"cmdExit", [this] { reject(); }},
  };
  for (const char* name : {"optCom1", "optCom2", "optCom3", "b9600", "b19200", "b115200"})
    rows.push_back({name, [this] { actions_->update(); }});
  actions_ = new platform::desktop::ActionTable(*this, services_.system.busy, std::move(rows));
}

frmWDXOptions::~frmWDXOptions() = default;

/// The device behind each button, and the adapter's own name.
void frmWDXOptions::describePorts() {
  const platform::SerialPorts ports(services_.system.environment, services_.system.registry);
  QRadioButton* const buttons[] = {ui_->optCom1, ui_->optCom2, ui_->optCom3};
  for (int port = 1; port <= 3; ++port) {
    const auto device = ports.port(port);
    std::string text = "No serial device";
    if (device) text = device->device + (device->adapter.empty() ? "" : " (" + device->adapter + ")");
    buttons[port - 1]->setToolTip(platform::desktop::toPlainTip(text));
    buttons[port - 1]->setAccessibleDescription(platform::desktop::toShown(text));
  }
}

void frmWDXOptions::setupLoader() {
  loaderPath_ = files_.loader();
  if (loaderPath_.empty()) {
    showLoader();
    return choose({});
  }
  const std::optional<std::string> saved = files_.settings();
  choose(saved ? serialSettingsFrom(*saved) : SerialSettings());
}

/// A person shows where the loader is, or would rather end.
void frmWDXOptions::showLoader() {
  using runtime::Answer;
  endsProgram_ = services_.user.message("Unable to locate 'wdx.exe', press OK to manually locate",
                                        runtime::Buttons::OkCancel, runtime::Icon::None,
                                        "Could Not Find wdx.exe") == Answer::Cancel;
  if (endsProgram_) return;
  do
    loaderPath_ = pickers_.openFile({.title = "Select wdx.exe",
                                     .startFolder = services_.api.currentFolder(),
                                     .filter = loaderName,
                                     .fileName = loaderName});
  while (!loaderPath_.empty() && runtime::GetFileName(loaderPath_) != loaderName);
}

void frmWDXOptions::choose(const SerialSettings& settings) {
  ui_->optCom1->setChecked(settings.comPort == 1);
  ui_->optCom2->setChecked(settings.comPort == 2);
  ui_->optCom3->setChecked(settings.comPort == 3);
  for (QRadioButton* const baud : {ui_->b9600, ui_->b19200, ui_->b115200}) {
    baud->setAutoExclusive(false);  // so that none may be chosen
    baud->setChecked(baud->text().toStdString() == settings.baudRate);
    baud->setAutoExclusive(true);
  }
  ui_->checkKeepOpen->setChecked(settings.keepOpen);
}

SerialSettings frmWDXOptions::chosen() const {
  SerialSettings settings{0, {}, ui_->checkKeepOpen->isChecked()};
  QRadioButton* const ports[] = {ui_->optCom1, ui_->optCom2, ui_->optCom3};
  for (int port = 1; port <= 3; ++port)
    if (ports[port - 1]->isChecked()) settings.comPort = port;
  for (const QRadioButton* const baud : {ui_->b9600, ui_->b19200, ui_->b115200})
    if (baud->isChecked()) settings.baudRate = baud->text().toStdString();
  return settings;
}

LoaderStart frmWDXOptions::DownloadFile(const std::string& path) {
  if (chosen().baudRate.empty() || chosen().comPort == 0 || loaderPath_.empty()) setupLoader();
  if (loaderPath_.empty() || chosen().baudRate.empty()) return LoaderStart::NotTried;
  const std::string now = platform::desktop::Locale().timeText(std::time(nullptr));
  return startLoader(services_, {path, chosen(), loaderPath_}, now);
}

void frmWDXOptions::cmdSend_Click() {
  files_.saveSettings(textOf(chosen()));
  started_ = DownloadFile(sendFilePath_);
  accept();
}

void frmWDXOptions::cmdNetwork_Click() {
  wantsNetwork_ = true;
  reject();
}

}  // namespace download
