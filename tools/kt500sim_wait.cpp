#include "tools/kt500sim_wait.h"

#include <poll.h>

#include <algorithm>
#include <limits>

#include "platform/Signals.h"

namespace kt500sim {

bool waitFor(int descriptor, short what, Moment until) {
  while (!isToEnd()) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
    if (left <= 0) return false;
    pollfd wanted[] = {{descriptor, what, 0}, {platform::endSignalDescriptor(), POLLIN, 0}};
    if (poll(wanted, 2, static_cast<int>(std::min<long>(left, std::numeric_limits<int>::max()))) < 0)
      continue;
    if (wanted[0].revents != 0) return !isToEnd();
  }
  return false;
}

bool isToEnd() { return platform::endSignal() != 0; }

}  // namespace kt500sim
