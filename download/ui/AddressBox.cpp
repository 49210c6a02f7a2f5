#include "download/ui/AddressBox.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>

namespace download {

void AddressBox::paste() { emit pasted(QGuiApplication::clipboard()->text()); }

void AddressBox::keyPressEvent(QKeyEvent* event) {
  event->matches(QKeySequence::Paste) ? paste() : QLineEdit::keyPressEvent(event);
}

void AddressBox::mouseReleaseEvent(QMouseEvent* event) {
  const QClipboard* const clipboard = QGuiApplication::clipboard();
  if (event->button() != Qt::MiddleButton || !clipboard->supportsSelection())
    return QLineEdit::mouseReleaseEvent(event);
  emit pasted(clipboard->text(QClipboard::Selection));
}

void AddressBox::dropEvent(QDropEvent* event) {
  emit pasted(event->mimeData()->text());
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

}  // namespace download
