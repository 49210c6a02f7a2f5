#include "platform/desktop/ScrollList.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <algorithm>

namespace platform::desktop {
namespace {

constexpr int textMargin = 4;  // pixels between the frame and the text

/// A spin box: its number is the entry's index, its text the entry, read as one line. The scroll bar is how
/// it looks, not something more to walk through.
class ScrollListInterface : public QAccessibleWidget,
                            public QAccessibleValueInterface,
                            public QAccessibleTextInterface {
 public:
  explicit ScrollListInterface(ScrollList* list)
      : QAccessibleWidget(list, QAccessible::SpinBox), list_(list) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  int childCount() const override { return 0; }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Value ? list_->topEntry() : QAccessibleWidget::text(kind);
  }

  QVariant currentValue() const override { return list_->topIndex(); }
  void setCurrentValue(const QVariant& value) override {
    if (list_->isEnabled()) list_->setTopIndex(value.toInt());
  }
  QVariant minimumValue() const override { return 0; }
  QVariant maximumValue() const override {
    return std::max(0, static_cast<int>(list_->entries().size()) - 1);
  }
  QVariant minimumStepSize() const override { return 1; }

  QString text(int start, int end) const override { return list_->topEntry().mid(start, end - start); }
  int characterCount() const override { return static_cast<int>(list_->topEntry().size()); }
  QRect characterRect(int) const override { return rect(); }
  int offsetAtPoint(const QPoint&) const override { return 0; }
  QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }
  /// Nothing in it is edited or selected.
  int cursorPosition() const override { return 0; }
  void setCursorPosition(int) override {}
  int selectionCount() const override { return 0; }
  void selection(int, int* start, int* end) const override { *start = *end = 0; }
  void addSelection(int, int) override {}
  void removeSelection(int) override {}
  void setSelection(int, int, int) override {}
  void scrollToSubstring(int, int) override {}

 private:
  ScrollList* list_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* list = qobject_cast<ScrollList*>(object);
  return list == nullptr ? nullptr : new ScrollListInterface(list);
}

QAbstractSlider::SliderAction turnOf(int key) {
  switch (key) {
    case Qt::Key_Up:
      return QAbstractSlider::SliderSingleStepSub;
    case Qt::Key_Down:
      return QAbstractSlider::SliderSingleStepAdd;
    case Qt::Key_PageUp:
      return QAbstractSlider::SliderPageStepSub;
    case Qt::Key_PageDown:
      return QAbstractSlider::SliderPageStepAdd;
    case Qt::Key_Home:
      return QAbstractSlider::SliderToMinimum;
    case Qt::Key_End:
      return QAbstractSlider::SliderToMaximum;
    default:
      return QAbstractSlider::SliderNoAction;
  }
}

bool isTyped(const QKeyEvent& event) {
  return !event.text().isEmpty() && event.text().at(0).isPrint() &&
         (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
}

}  // namespace

ScrollList::ScrollList(QWidget* parent) : QAbstractScrollArea(parent) {
  QAccessible::installFactory(makeInterface);  // once: Qt ignores one that it has
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  viewport()->setBackgroundRole(QPalette::Base);
  verticalScrollBar()->setRange(0, 0);
  verticalScrollBar()->setPageStep(1);  // a page is the one entry that shows; the wheel turns a page at most
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int index) {
    showTop();
    emit topChanged(index);
  });
}

void ScrollList::setEntries(const QStringList& entries) {
  entries_ = entries;
  verticalScrollBar()->setRange(0, std::max(0, static_cast<int>(entries.size()) - 1));
  showTop();
  updateGeometry();
}

int ScrollList::topIndex() const { return entries_.isEmpty() ? -1 : verticalScrollBar()->value(); }

void ScrollList::setTopIndex(int index) { verticalScrollBar()->setValue(index); }

QString ScrollList::topEntry() const { return entries_.value(topIndex()); }

QSize ScrollList::sizeHint() const {
  const QFontMetrics metrics = fontMetrics();
  int width = 0;
  for (const QString& entry : entries_) width = std::max(width, metrics.horizontalAdvance(entry));
  const int frame = 2 * frameWidth();
  return {width + 2 * textMargin + verticalScrollBar()->sizeHint().width() + frame,
          metrics.height() + 2 * textMargin + frame};
}

void ScrollList::paintEvent(QPaintEvent*) {
  QStylePainter painter(viewport());
  const QRect area = viewport()->rect();
  const QRect textArea = area.adjusted(textMargin, 0, -textMargin, 0);
  style()->drawItemText(&painter, textArea, static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading), palette(),
                        isEnabled(), fontMetrics().elidedText(topEntry(), Qt::ElideRight, textArea.width()),
                        QPalette::Text);
  if (!hasFocus()) return;
  QStyleOptionFocusRect focus;
  focus.initFrom(viewport());
  focus.backgroundColor = palette().color(QPalette::Base);
  painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
}

/// The area's own answer to these three is about contents larger than it.
void ScrollList::resizeEvent(QResizeEvent*) { viewport()->update(); }
void ScrollList::focusInEvent(QFocusEvent*) { viewport()->update(); }
void ScrollList::focusOutEvent(QFocusEvent*) { viewport()->update(); }

void ScrollList::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) updateGeometry();
  QAbstractScrollArea::changeEvent(event);
}

/// Keys that do not turn the list are the window's: Enter, Escape, shortcuts.
void ScrollList::keyPressEvent(QKeyEvent* event) {
  const QAbstractSlider::SliderAction turn = turnOf(event->key());
  if (turn != QAbstractSlider::SliderNoAction)
    verticalScrollBar()->triggerAction(turn);
  else if (isTyped(*event))
    search(event->text());
  else
    event->ignore();
}

/// The next entry that begins with what was typed; the same letter again goes on from the entry shown.
void ScrollList::search(const QString& typed) {
  const bool goesOn = sinceTyped_.isValid() && !sinceTyped_.hasExpired(QApplication::keyboardInputInterval());
  typed_ = goesOn && typed != typed_ ? typed_ + typed : typed;
  sinceTyped_.start();
  const auto count = static_cast<int>(entries_.size());
  for (int step = typed_.size() == 1 ? 1 : 0; step <= count && count > 0; ++step) {
    const int index = (topIndex() + step) % count;
    if (entries_[index].startsWith(typed_, Qt::CaseInsensitive)) return setTopIndex(index);
  }
}

void ScrollList::showTop() {
  viewport()->update();
  QAccessibleValueChangeEvent value(this, topIndex());
  QAccessible::updateAccessibility(&value);
  QAccessibleTextUpdateEvent text(this, 0, told_, topEntry());
  QAccessible::updateAccessibility(&text);
  told_ = topEntry();
}

}  // namespace platform::desktop
