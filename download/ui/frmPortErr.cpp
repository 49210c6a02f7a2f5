#include "download/ui/frmPortErr.h"

#include "ui_frmPortErr.h"

namespace download {

frmPortErr::frmPortErr(int comPort, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmPortErr>()) {
  ui_->setupUi(this);
  ui_->lblerr->setText(QStringLiteral("COM%1 is already open.").arg(comPort));
  connect(ui_->cmdRetry, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmPortErr::~frmPortErr() = default;

}  // namespace download
