#include "archive/ui/frmOverwriteFile.h"

#include <QStyle>

#include "platform/desktop/Locale.h"
#include "platform/desktop/Text.h"
#include "ui_frmOverwriteFile.h"

namespace archive {

using platform::desktop::toShown;

frmOverwriteFile::frmOverwriteFile(const OverwriteQuestion& question, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmOverwriteFile>()) {
  ui_->setupUi(this);
  showQuestion(question);
  connect(ui_->cmdYes, &QPushButton::clicked, this, &frmOverwriteFile::cmdYes_Click);
  connect(ui_->cmdAll, &QPushButton::clicked, this, &frmOverwriteFile::cmdAll_Click);
  connect(ui_->cmdNo, &QPushButton::clicked, this, &frmOverwriteFile::cmdNo_Click);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmOverwriteFile::~frmOverwriteFile() = default;

void frmOverwriteFile::showQuestion(const OverwriteQuestion& question) {
  const int icon = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
  ui_->Image1->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxQuestion, nullptr, this).pixmap(icon));
  ui_->lblPrompt->setText(question.isFolder ? tr("Overwrite Existing Folder?")
                                            : tr("Confirm File Overwrite?"));
  ui_->lblPath->setText(toShown(question.path));
  std::string existing = std::to_string(question.size) + " bytes";
  if (question.modified) existing += ", " + platform::desktop::Locale().dateTimeText(*question.modified);
  ui_->lblToReplace->setText(toShown(existing));
  ui_->lblInTar->setText(toShown(question.member));
  ui_->lblFolderNote->setVisible(question.isFolder);
}

void frmOverwriteFile::end(OverwriteAnswer answer) {
  answer_ = answer;
  accept();
}

OverwriteAnswer OverwriteDialogs::ask(const OverwriteQuestion& question) {
  // Its window may be unloaded while the dialog waits and takes the dialog along.
  const QPointer<frmOverwriteFile> dialog = new frmOverwriteFile(question, parent_);
  dialog->exec();
  if (dialog.isNull()) return OverwriteAnswer::Cancel;
  const OverwriteAnswer answer = dialog->answer();
  delete dialog;
  return answer;
}

}  // namespace archive
