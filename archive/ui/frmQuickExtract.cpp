#include "archive/ui/frmQuickExtract.h"

#include "archive/ui/frmOverwriteFile.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"
#include "ui_frmQuickExtract.h"

namespace archive {

frmQuickExtract::frmQuickExtract(runtime::Services services, QWidget* parent)
    : QDialog(parent), services_(services), ui_(std::make_unique<Ui::frmQuickExtract>()) {
  ui_->setupUi(this);
  platform::desktop::connectCancel(ui_->cmdCancel, &QPushButton::clicked, this,
                                   &frmQuickExtract::cmdCancel_Click);
}

frmQuickExtract::~frmQuickExtract() = default;

void frmQuickExtract::setStatus(const std::string& text) {
  ui_->lblStatus->setText(platform::desktop::toShown(text));
}

Extraction frmQuickExtract::QuickExtract(const std::string& archivePath, const std::string& outFolder) {
  OverwriteDialogs asker(this);
  return ExtractJob(services_, asker, *this, {Extract::Quickly, archivePath, outFolder}).run();
}

void frmQuickExtract::showPercent(float percent) {
  ui_->ProgressBar1->setValue(qRound(percent));
  services_.user.letEventsRun();
}

/// The gate rejects this window too when the end is wanted.
void frmQuickExtract::cmdCancel_Click() {
  if (!services_.system.busy.endRequested()) services_.system.busy.requestEnd();
}

}  // namespace archive
