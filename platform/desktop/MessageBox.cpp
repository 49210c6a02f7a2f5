#include "platform/desktop/MessageBox.h"

#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include "platform/desktop/ActiveWindow.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

constexpr qsizetype mostLines = 500;  // a tool may write one for each of many files
constexpr int column = 400;           // pixels; about what the box gives a text that is wrapped

QString firstLines(const QString& text) {
  qsizetype end = -1;
  for (qsizetype line = 0; line < mostLines; ++line) {
    end = text.indexOf(QLatin1Char('\n'), end + 1);
    if (end < 0) return text;
  }
  const QStringView rest = QStringView(text).sliced(end).trimmed();
  if (rest.isEmpty()) return text;
  return text.left(end) + QStringLiteral("\n(%1 more lines)").arg(rest.count(QLatin1Char('\n')) + 1);
}

/// A text that would push the buttons off the screen, or a name in it that would be cut, is scrolled. By a
/// label of its own: the box would decide whether its own one is wrapped.
void letScroll(QMessageBox& box) {
  auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
  const QSize room = box.screen()->availableSize() / 2;
  const QRect place(0, 0, qMin(column, room.width()), 0);
  const QSize needed = label->fontMetrics().boundingRect(place, Qt::TextWordWrap, label->text()).size();
  if (needed.boundedTo(room) == needed) return;
  auto* const area = new QScrollArea(&box);
  area->setObjectName(QStringLiteral("scrollText"));
  area->setAccessibleName(QStringLiteral("Message"));
  area->setFrameShape(QFrame::NoFrame);
  const int bar = area->verticalScrollBar()->sizeHint().width();
  area->setMinimumSize(needed.boundedTo(room) + QSize(bar, bar));
  delete box.layout()->replaceWidget(label, area);
  label->hide();
  auto* const text = new QLabel(label->text());
  text->setTextFormat(Qt::PlainText);
  text->setTextInteractionFlags(label->textInteractionFlags());
  text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  text->setWordWrap(true);
  area->setWidget(text);
  area->setWidgetResizable(true);
}

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
  box->setText(firstLines(toShown(text)));
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
  letScroll(*box);
  box->exec();
  if (box.isNull()) return answerOf(refusalOf(buttons));
  const QMessageBox::StandardButton pressed = box->standardButton(box->clickedButton());
  delete box;
  return answerOf(pressed == QMessageBox::NoButton ? refusalOf(buttons) : pressed);
}

}  // namespace platform::desktop
