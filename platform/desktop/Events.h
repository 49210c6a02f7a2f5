#pragma once

#include <chrono>

namespace platform::desktop {

void letEventsRun();  ///< pending events run once, without waiting

/// The windows repaint; user input stays queued. Timers still tick: their handlers ask ToolRunning.
void repaint();

/// One step of a loop that waits for something: pending events run; when there were none, it sleeps for
/// `nap`, to which the system adds some 50 µs.
void pollWait(std::chrono::nanoseconds nap = std::chrono::microseconds(240));

}  // namespace platform::desktop
