#include "platform/desktop/Gate.h"

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSocketNotifier>

#include "platform/desktop/Handlers.h"
#include "platform/desktop/ScrollList.h"

namespace platform::desktop {
namespace {

constexpr int patience = 300;  // milliseconds

bool isInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      return true;
    default:
      return false;  // a release is always delivered: what was pressed must not stay so
  }
}

template <typename Kind>
bool isWithin(const QWidget* widget) {
  for (const QWidget* at = widget; at != nullptr; at = at->isWindow() ? nullptr : at->parentWidget())
    if (qobject_cast<const Kind*>(at) != nullptr) return true;
  return false;
}

bool isLog(const QWidget* widget) {
  for (const QWidget* at = widget; at != nullptr; at = at->parentWidget()) {
    const auto* text = qobject_cast<const QPlainTextEdit*>(at);
    if (text != nullptr) return text->isReadOnly();
  }
  return false;
}

/// The wheel passes to what scrolls, not to a list whose entry it would change.
bool scrolls(const QWidget* widget) {
  return !isWithin<ScrollList>(widget) &&
         (isWithin<QAbstractScrollArea>(widget) || isWithin<QScrollBar>(widget));
}

bool wasToldOf(const QWidget* widget) {
  for (const QWidget* at = widget; at != nullptr; at = at->isWindow() ? nullptr : at->parentWidget())
    if (whileBusy(at) != WhileBusy::Dropped) return true;
  return false;
}

}  // namespace

Gate::Gate(Busy& busy) : busy_(busy) {
  patience_.setSingleShot(true);
  patience_.setInterval(patience);
  connect(&patience_, &QTimer::timeout, this, &Gate::lookDisabled);
  busy_.watch(*this);
  qApp->installEventFilter(this);
  hearEndSignals();
}

Gate::~Gate() { busy_.unwatch(*this); }

void Gate::hearEndSignals() {
  const int descriptor = endSignalDescriptor();
  if (descriptor < 0) return;
  auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
  connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
    notifier->setEnabled(false);
    busy_.requestEnd();
    if (!busy_.held()) emit endWanted();
  });
}

void Gate::began() { patience_.start(); }

/// Whoever waits in a box of the job gets its refusal.
void Gate::stopWanted() {
  const QList<QPointer<QWidget>> opened = opened_;
  for (auto window = opened.rbegin(); window != opened.rend(); ++window)
    if (auto* dialog = qobject_cast<QDialog*>(window->data()); dialog != nullptr && dialog->isVisible())
      dialog->reject();
}

void Gate::ended() {
  patience_.stop();
  opened_.clear();
  QWidget* const now = QApplication::focusWidget();
  if (!focus_.isNull() && (now == nullptr || now == shifted_) && focus_->isEnabled() && focus_->isVisible())
    focus_->setFocus(Qt::OtherFocusReason);
  focus_.clear();
  shifted_.clear();
  if (busy_.endRequested()) emit endWanted();
}

void Gate::lookDisabled() {
  focus_ = QApplication::focusWidget();
  busy_.becomeSlow();
  shifted_ = QApplication::focusWidget();
  if (shifted_ == focus_) focus_.clear();
}

bool Gate::passes(QWidget* widget, const QEvent& event) const {
  if (opened_.contains(widget->window())) return true;
  if (event.type() == QEvent::Wheel) return scrolls(widget);
  return wasToldOf(widget) || isWithin<QScrollBar>(widget) || isWithin<QMenuBar>(widget) ||
         isWithin<QMenu>(widget) || isLog(widget);
}

bool Gate::eventFilter(QObject* watched, QEvent* event) {
  if (!busy_.held()) return false;
  auto* const widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr) return false;  // the widget that it is meant for is asked
  if (event->type() == QEvent::Show && widget->isWindow()) opened_.append(widget);
  return isInput(event->type()) && !passes(widget, *event);
}

}  // namespace platform::desktop
