#include "shell/ui/Dialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

#include "ui_Dialog.h"

namespace shell {

Dialog::Dialog(runtime::Settings& settings, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::Dialog>()), settings_(settings) {
  ui_->setupUi(this);
  connect(ui_->OKButton, &QPushButton::clicked, this, &Dialog::OKButton_Click);
}

Dialog::~Dialog() = default;

void Dialog::OKButton_Click() {
  if (ui_->checkNoShow->isChecked()) settings_.dontShowAgain();
  accept();
}

}  // namespace shell
