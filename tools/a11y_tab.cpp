#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QRadioButton>

#include "tools/a11y_rules.h"

namespace a11y {
namespace {

constexpr int mostControls = 200;

/// The controls from one to the next until the first comes again, or none comes.
QList<QWidget*> tabbed(QWidget& window) {
  QList<QWidget*> order;
  for (int i = 0; i < mostControls; ++i) {
    QWidget* const at = window.focusWidget() == nullptr ? &window : window.focusWidget();
    if (order.contains(at) && at != order.last()) break;  // a page is left behind its last link
    if (at != &window && !order.contains(at)) order.append(at);
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(at, &tab);
  }
  return order;
}

/// A text that the mouse may select is no control.
bool isSelectableText(const QWidget& widget) {
  return qobject_cast<const QLabel*>(&widget) != nullptr && widget.focusPolicy() == Qt::ClickFocus;
}

bool canBeFocused(const QWidget& window, const QWidget& widget) {
  return !isSelectableText(widget) && widget.isVisible() && widget.isEnabled() &&
         widget.focusPolicy() != Qt::NoFocus && widget.window() == &window;
}

/// Tab stands for all that arrow keys reach from there: the other options of a group, what a control consists
/// of.
bool isReached(const QList<QWidget*>& order, const QWidget& widget) {
  for (const QWidget* const one : order) {
    if (one == &widget || one->isAncestorOf(&widget) || one == widget.focusProxy()) return true;
    if (qobject_cast<const QRadioButton*>(one) != nullptr &&
        qobject_cast<const QRadioButton*>(&widget) != nullptr && one->parent() == widget.parent())
      return true;
  }
  return false;
}

/// Wholly above, or in the same line and wholly to the left.
bool goesBack(const QWidget& from, const QWidget& to) {
  const QRect a(from.mapToGlobal(QPoint()), from.size()), b(to.mapToGlobal(QPoint()), to.size());
  if (b.bottom() < a.top()) return b.left() <= a.right();
  return b.top() <= a.bottom() && a.top() <= b.bottom() && b.right() < a.left();
}

}  // namespace

QStringList missingByTab(QWidget& window) {
  QWidget* const before = window.focusWidget();
  const QList<QWidget*> order = tabbed(window);
  if (before != nullptr) before->setFocus();
  QStringList missing;
  for (const QWidget* const widget : window.findChildren<QWidget*>())
    if (canBeFocused(window, *widget) && !isReached(order, *widget))
      missing << widget->objectName() + QStringLiteral(" (") +
                     QLatin1String(widget->metaObject()->className()) +
                     QStringLiteral("): Tab does not reach it");
  QStringList back;
  for (qsizetype i = 0; i < order.size(); ++i) {
    const QWidget& next = *order[(i + 1) % order.size()];
    if (goesBack(*order[i], next)) back << order[i]->objectName() + QStringLiteral(" > ") + next.objectName();
  }
  if (back.size() > 1) missing << QStringLiteral("Tab goes back at ") + back.join(QStringLiteral(", "));
  return missing;
}

}  // namespace a11y
