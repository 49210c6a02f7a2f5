#include "archive/ui/frmQuickExtract.h"

#include "archive/ui/frmOverwriteFile.h"
#include "platform/desktop/Text.h"
#include "ui_frmQuickExtract.h"

namespace archive {

frmQuickExtract::frmQuickExtract(runtime::Services services, std::function<void()> endProgram,
                                 QWidget* parent)
    : QDialog(parent),
      services_(services),
      endProgram_(std::move(endProgram)),
      ui_(std::make_unique<Ui::frmQuickExtract>()) {
  ui_->setupUi(this);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmQuickExtract::cmdCancel_Click);
}

frmQuickExtract::~frmQuickExtract() = default;

void frmQuickExtract::setStatus(const std::string& text) {
  ui_->lblStatus->setText(platform::desktop::toShown(text));
}

ExtractResult frmQuickExtract::QuickExtract(const std::string& archivePath, const std::string& outFolder) {
  OverwriteDialogs asker(this);
  return Extractor(services_, asker).QuickExtract(archivePath, outFolder, *this);
}

void frmQuickExtract::showPercent(float percent) {
  ui_->ProgressBar1->setValue(qRound(percent));
  services_.user.letEventsRun();
}

/// Also while the archive is listed: nothing is awaited. What runs in the console ends with that.
void frmQuickExtract::cmdCancel_Click() {
  cancelled_ = true;
  endProgram_();
}

}  // namespace archive
