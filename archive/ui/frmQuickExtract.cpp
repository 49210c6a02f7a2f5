#include "archive/ui/frmQuickExtract.h"

#include <algorithm>
#include <climits>

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
  const Extraction made =
      ExtractJob(services_, asker, *this, {Extract::Quickly, archivePath, outFolder}).run();
  if (made.toolRan && made.end != runtime::JobEnd::Stopped)
    ui_->ProgressBar1->setValue(ui_->ProgressBar1->maximum());
  return made;
}

/// What is shown is how far the unpacking is, and it has not begun.
void frmQuickExtract::showPercent(float /*percent*/) { services_.user.letEventsRun(); }

std::function<void(std::size_t)> frmQuickExtract::unpacking(std::size_t members) {
  const int count = static_cast<int>(std::min<std::size_t>(members, INT_MAX));
  ui_->ProgressBar1->setRange(0, count);
  ui_->ProgressBar1->setValue(0);
  // A member that the archive holds twice is counted twice.
  return [this, count](std::size_t done) {
    ui_->ProgressBar1->setValue(static_cast<int>(std::min<std::size_t>(done, std::max(count - 1, 0))));
  };
}

/// The gate rejects this window too when the end is wanted.
void frmQuickExtract::cmdCancel_Click() {
  if (!services_.system.busy.endRequested()) services_.system.busy.requestEnd();
}

}  // namespace archive
