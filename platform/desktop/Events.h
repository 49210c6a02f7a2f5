#pragma once

#include <chrono>

namespace platform::desktop {

void letEventsRun();     ///< pending events run once, without waiting; while the gate is held only
void letWindowsPaint();  ///< the same without what a person does

/// One step of a loop that waits for something: pending events run; when there were none, it sleeps for
/// `nap`, to which the system adds some 50 µs.
void pollWait(std::chrono::nanoseconds nap);

}  // namespace platform::desktop
