#pragma once

#include <QStringList>

#include "tools/a11y_bus.h"

class QWidget;

namespace a11y {

/// What assistive tools miss in a window, a line each: the control and what it lacks. Check boxes and option
/// buttons are toggled, and back.
QStringList missingOnTheBus(const Bus& bus, QWidget& window);

/// What keys miss: controls that Tab does not reach, and an order that goes back and forth. Leaves the focus
/// where it was.
QStringList missingByTab(QWidget& window);

}  // namespace a11y
