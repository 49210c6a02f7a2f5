#pragma once

#include <QObject>
#include <utility>

#include "platform/ToolRunning.h"

namespace platform::desktop {

/// Wires a signal to a handler of a form. While a tool runs the handler is not called: windows repaint then,
/// and Qt still delivers posted clicks, timers and sockets, but nothing of ours may act.
template <typename Sender, typename Signal, typename Form, typename Handler>
QMetaObject::Connection connectHandler(Sender* sender, Signal signal, Form* form,
                                       const ToolRunning& toolRunning, Handler handler) {
  return QObject::connect(sender, signal, form,
                          [form, &toolRunning, handler = std::move(handler)](auto&&...) {
                            if (!toolRunning.active()) (form->*handler)();
                          });
}

}  // namespace platform::desktop
