#include "platform/desktop/Handlers.h"

#include <QVariant>

namespace platform::desktop {
namespace {

constexpr const char* property = "whileBusy";

}  // namespace

void setWhileBusy(QObject* control, WhileBusy what) {
  control->setProperty(property, static_cast<int>(what));
}

WhileBusy whileBusy(const QObject* control) {
  return static_cast<WhileBusy>(control->property(property).toInt());
}

}  // namespace platform::desktop
