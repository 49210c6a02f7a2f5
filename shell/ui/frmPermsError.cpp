#include "shell/ui/frmPermsError.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

#include "ui_frmPermsError.h"

namespace shell {

frmPermsError::frmPermsError(runtime::Settings& settings, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmPermsError>()), settings_(settings) {
  ui_->setupUi(this);
  connect(ui_->OKButton, &QPushButton::clicked, this, &frmPermsError::OKButton_Click);
}

frmPermsError::~frmPermsError() = default;

void frmPermsError::OKButton_Click() {
  if (ui_->checkNoShow->isChecked()) settings_.dontShowAgain();
  accept();
}

}  // namespace shell
