#pragma once

#include <functional>

#include "runtime/Pace.h"
#include "runtime/Services.h"

namespace runtime {

/// What a long loop of a job asks again and again: lets events run now and then; false once the job is to
/// stop. Belongs to the thread of the windows.
inline std::function<bool()> stepper(const Services& services) {
  return [&user = services.user, stop = services.system.busy.stop(), pace = Pace()]() mutable {
    if (pace.due()) user.letEventsRun();
    return !stop.requested();
  };
}

}  // namespace runtime
