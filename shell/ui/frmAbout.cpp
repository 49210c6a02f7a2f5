#include "shell/ui/frmAbout.h"

#include <QLabel>
#include <QPushButton>

#include "platform/desktop/ImageList.h"
#include "runtime/UserInterface.h"
#include "ui_frmAbout.h"

namespace shell {

frmAbout::frmAbout(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::frmAbout>()) {
  ui_->setupUi(this);
  const QString title = QString::fromLatin1(runtime::programTitle);
  setWindowTitle(QStringLiteral("About ") + title);
  constexpr int pictureSide = 48;  // pixels
  ui_->lblPicture->setPixmap(
      platform::desktop::programIcon().pixmap(QSize(pictureSide, pictureSide), devicePixelRatioF()));
  ui_->lblTitle->setText(title);
  ui_->lblVersion->setText(QStringLiteral("Version " PAKRUNE_VERSION));
  connect(ui_->cmdOK, &QPushButton::clicked, this, &frmAbout::cmdOK_Click);
}

frmAbout::~frmAbout() = default;

/// The control that had the focus in the main window has it again.
void frmAbout::cmdOK_Click() {
  if (QWidget* mainWindow = parentWidget()) mainWindow->activateWindow();
  accept();
}

}  // namespace shell
