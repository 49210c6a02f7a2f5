#include "browser/ui/Divider.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace browser {
namespace {

constexpr int wholeWay = 100;  // percent

class DividerInterface : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit DividerInterface(Divider* divider)
      : QAccessibleWidget(divider, QAccessible::Slider), divider_(divider) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  QVariant currentValue() const override { return divider_->percent(); }
  void setCurrentValue(const QVariant& value) override { divider_->movePercent(value.toInt()); }
  QVariant minimumValue() const override { return 0; }
  QVariant maximumValue() const override { return wholeWay; }
  QVariant minimumStepSize() const override { return 1; }

 private:
  Divider* divider_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* const divider = qobject_cast<Divider*>(object);
  return divider == nullptr ? nullptr : new DividerInterface(divider);
}

}  // namespace

Divider::Divider(QWidget* parent) : QFrame(parent) {
  QAccessible::installFactory(makeInterface);  // once: Qt ignores one that it has
  setCursor(Qt::SplitHCursor);
  setFocusPolicy(Qt::TabFocus);
}

void Divider::setWay(int least, int most) {
  least_ = least;
  most_ = most;
}

int Divider::percent() const {
  return most_ > least_ ? qRound(static_cast<double>(wholeWay) * (x() - least_) / (most_ - least_)) : 0;
}

void Divider::movePercent(int percent) { dragTo(least_ + percent * (most_ - least_) / wholeWay); }

void Divider::dragTo(int left) { emit dragged(left - x() + width() / 2); }

/// A grip in the middle; with the focus the whole bar is filled, since a line around it would be all of it.
void Divider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (hasFocus()) painter.fillRect(rect(), palette().highlight());
  QColor ink = palette().color(hasFocus() ? QPalette::HighlightedText : QPalette::WindowText);
  ink.setAlphaF(0.6F);
  constexpr int dots = 5;
  const int side = qMax(2, width() / 2);
  QRect dot((width() - side) / 2, (height() - (2 * dots - 1) * side) / 2, side, side);
  for (int i = 0; i < dots; ++i, dot.translate(0, 2 * side)) painter.fillRect(dot, ink);
}

void Divider::moveEvent(QMoveEvent*) {
  QAccessibleValueChangeEvent moved(this, percent());
  QAccessible::updateAccessibility(&moved);
}

void Divider::mousePressEvent(QMouseEvent* event) { dragging_ = event->button() == Qt::LeftButton; }

void Divider::mouseReleaseEvent(QMouseEvent*) { dragging_ = false; }

void Divider::mouseMoveEvent(QMouseEvent* event) {
  if (dragging_) emit dragged(event->position().toPoint().x());
}

void Divider::keyPressEvent(QKeyEvent* event) {
  const int step = 4 * width();
  switch (event->key()) {
    case Qt::Key_Left:
      return dragTo(x() - step);
    case Qt::Key_Right:
      return dragTo(x() + step);
    case Qt::Key_Home:
      return dragTo(least_);
    case Qt::Key_End:
      return dragTo(most_);
    default:
      QFrame::keyPressEvent(event);
  }
}

}  // namespace browser
