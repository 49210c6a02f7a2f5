#include "browser/ui/frmPattern.h"

#include "platform/desktop/Text.h"
#include "ui_frmPattern.h"

namespace browser {

using platform::desktop::fromControl;
using platform::desktop::toControl;

frmPattern::frmPattern(const std::string& pattern, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmPattern>()) {
  ui_->setupUi(this);
  const std::size_t dot = pattern.find('.');
  ui_->txtFilename->setText(toControl(pattern.substr(0, dot)));
  if (dot != pattern.npos) ui_->txtExtension->setText(toControl(pattern.substr(dot + 1)));
  ui_->txtFilename->selectAll();
  connect(ui_->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmPattern::~frmPattern() = default;

std::string frmPattern::pattern() const {
  return fromControl(ui_->txtFilename->text()) + "." + fromControl(ui_->txtExtension->text());
}

void frmPattern::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (const QWidget* over = parentWidget())
    move(over->window()->geometry().center() - QPoint(width() / 2, height() / 2));
}

}  // namespace browser
