#include "browser/ui/ValueLabel.h"

#include <QMouseEvent>
#include <QPainter>

namespace browser {

ValueLabel::ValueLabel(QWidget* parent) : PathLabel(parent) {
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setFocusPolicy(Qt::StrongFocus);  // the flags alone leave Tab out
}

bool ValueLabel::isCut() const { return fontMetrics().horizontalAdvance(text()) > contentsRect().width(); }

void ValueLabel::paintEvent(QPaintEvent* event) {
  if (!isCut()) return QLabel::paintEvent(event);
  if (!hasSelectedText()) return PathLabel::paintEvent(event);
  QPainter painter(this);
  painter.fillRect(contentsRect(), palette().brush(QPalette::Highlight));
  painter.setPen(palette().color(QPalette::HighlightedText));
  painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                   fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width()));
}

void ValueLabel::mousePressEvent(QMouseEvent* event) {
  QLabel::mousePressEvent(event);
  if (isCut() && event->button() == Qt::LeftButton) setSelection(0, static_cast<int>(text().size()));
}

/// What is drawn is not where the text is.
void ValueLabel::mouseMoveEvent(QMouseEvent* event) {
  if (!isCut()) QLabel::mouseMoveEvent(event);
}

}  // namespace browser
