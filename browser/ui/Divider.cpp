#include "browser/ui/Divider.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace browser {

Divider::Divider(QWidget* parent) : QFrame(parent) {
  setCursor(Qt::SplitHCursor);
  setFocusPolicy(Qt::TabFocus);
}

void Divider::mousePressEvent(QMouseEvent* event) { dragging_ = event->button() == Qt::LeftButton; }

void Divider::mouseReleaseEvent(QMouseEvent*) { dragging_ = false; }

void Divider::mouseMoveEvent(QMouseEvent* event) {
  if (dragging_) emit dragged(event->position().toPoint().x());
}

void Divider::keyPressEvent(QKeyEvent* event) {
  const int step = 4 * width();
  const int middle = width() / 2;
  if (event->key() == Qt::Key_Left)
    emit dragged(middle - step);
  else if (event->key() == Qt::Key_Right)
    emit dragged(middle + step);
  else
    QFrame::keyPressEvent(event);
}

}  // namespace browser
