#pragma once

#include <QObject>
#include <QPointer>
#include <utility>

#include "platform/Busy.h"

namespace platform::desktop {

/// What becomes of input to a control while a job holds the gate.
enum class WhileBusy {
  Dropped,     ///< it does nothing
  Remembered,  ///< done once, afterwards
  Acts,        ///< the job's own Cancel and Stop, and what ends the program
};

/// Tells the gate; a control that nobody told of counts as Dropped.
void setWhileBusy(QObject* control, WhileBusy what);
WhileBusy whileBusy(const QObject* control);

/// Wires a signal to a handler of a form. While a job holds the gate the handler is not called: windows
/// repaint then, and Qt still delivers posted clicks, timers and sockets, but nothing of ours may act.
template <typename Sender, typename Signal, typename Form, typename Handler>
QMetaObject::Connection connectHandler(Sender* sender, Signal signal, Form* form, const Busy& busy,
                                       Handler handler) {
  return QObject::connect(sender, signal, form, [form, &busy, handler = std::move(handler)](auto&&...) {
    if (!busy.held()) (form->*handler)();
  });
}

/// The same for a handler that asks for a listing: while a job holds the gate it is remembered.
template <typename Sender, typename Signal, typename Form, typename Handler>
QMetaObject::Connection connectRemembered(Sender* sender, Signal signal, Form* form, Busy& busy,
                                          Busy::Width width, Handler handler) {
  setWhileBusy(sender, WhileBusy::Remembered);
  return QObject::connect(sender, signal, form,
                          [form, &busy, width, handler = std::move(handler)](auto&&...) {
                            busy.whenFree(width, [form = QPointer<Form>(form), handler] {
                              if (!form.isNull()) (form->*handler)();
                            });
                          });
}

/// The same for what works all the time: a job's Cancel.
template <typename Sender, typename Signal, typename Form, typename Handler>
QMetaObject::Connection connectCancel(Sender* sender, Signal signal, Form* form, Handler handler) {
  setWhileBusy(sender, WhileBusy::Acts);
  return QObject::connect(sender, signal, form,
                          [form, handler = std::move(handler)](auto&&...) { (form->*handler)(); });
}

}  // namespace platform::desktop
