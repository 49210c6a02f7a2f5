#include "platform/desktop/Events.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <chrono>
#include <thread>

namespace platform::desktop {
void letWindowsPaint() { QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); }

void letEventsRun() { QCoreApplication::processEvents(QEventLoop::AllEvents); }

void pollWait(std::chrono::nanoseconds nap) {
  QEventLoop loop;
  if (!loop.processEvents(QEventLoop::AllEvents)) std::this_thread::sleep_for(nap);
}

}  // namespace platform::desktop
