#include "platform/desktop/PathLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

constexpr int fewDigits = 12;

}  // namespace

PathLabel::PathLabel(QWidget* parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }

QSize PathLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * fewDigits, QLabel::minimumSizeHint().height()};
}

void PathLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QRect place = contentsRect();
  style()->drawItemText(&painter, place, static_cast<int>(alignment()), palette(), isEnabled(),
                        fontMetrics().elidedText(text(), Qt::ElideMiddle, place.width()), foregroundRole());
}

bool PathLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QLabel::event(event);
  const bool cut = fontMetrics().horizontalAdvance(text()) > contentsRect().width();
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                     cut ? toPlainTip(fromControl(text())) : QString(), this);
  return true;
}

}  // namespace platform::desktop
