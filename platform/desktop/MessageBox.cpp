#include "platform/desktop/MessageBox.h"

#include <QLabel>
#include <QMessageBox>
#include <QPointer>

#include "platform/desktop/ActiveWindow.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

QMessageBox::Icon iconOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Critical:
      return QMessageBox::Critical;
    case BoxIcon::Information:
      return QMessageBox::Information;
    case BoxIcon::Exclamation:
      return QMessageBox::Warning;
    case BoxIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(BoxButtons buttons) {
  if (buttons == BoxButtons::OkCancel) return QMessageBox::Ok | QMessageBox::Cancel;
  if (buttons == BoxButtons::YesNo) return QMessageBox::Yes | QMessageBox::No;
  return QMessageBox::Ok;
}

QMessageBox::StandardButton refusalOf(BoxButtons buttons) {
  if (buttons == BoxButtons::OkCancel) return QMessageBox::Cancel;
  return buttons == BoxButtons::YesNo ? QMessageBox::No : QMessageBox::Ok;
}

BoxAnswer answerOf(QMessageBox::StandardButton button) {
  if (button == QMessageBox::Yes) return BoxAnswer::Yes;
  if (button == QMessageBox::No) return BoxAnswer::No;
  return button == QMessageBox::Ok ? BoxAnswer::Ok : BoxAnswer::Cancel;
}

}  // namespace

BoxAnswer messageBox(std::string_view text, std::string_view title, BoxIcon icon, BoxButtons buttons,
                     std::string_view explanation, bool refusalPreset) {
  // Its window may be unloaded while the box waits and takes the box along, hence the guarded pointer.
  const QPointer<QMessageBox> box = new QMessageBox(activeWindow());
  box->setText(toShown(text));
  box->setInformativeText(toShown(explanation));
  // The box's own switch is for its text alone.
  for (QLabel* const label : box->findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  box->setWindowTitle(toShown(title));
  box->setIcon(iconOf(icon));
  box->setStandardButtons(buttonsOf(buttons));
  const QMessageBox::StandardButton agreed =
      buttons == BoxButtons::YesNo ? QMessageBox::Yes : QMessageBox::Ok;
  box->setDefaultButton(refusalPreset ? refusalOf(buttons) : agreed);
  box->setEscapeButton(refusalOf(buttons));
  box->exec();
  if (box.isNull()) return answerOf(refusalOf(buttons));
  const QMessageBox::StandardButton pressed = box->standardButton(box->clickedButton());
  delete box;
  return answerOf(pressed == QMessageBox::NoButton ? refusalOf(buttons) : pressed);
}

}  // namespace platform::desktop
