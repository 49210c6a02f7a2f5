#include "platform/Busy.h"

#include <utility>

namespace platform {

void Busy::enter() {
  if (depth_++ > 0) return;
  source_ = std::stop_source();
  if (endRequested_) source_.request_stop();
  for (Watcher* const watcher : watchers_) watcher->began();
}

void Busy::leave() {
  if (--depth_ > 0) return;
  slow_ = false;
  for (auto watcher = watchers_.rbegin(); watcher != watchers_.rend(); ++watcher) (*watcher)->ended();
  const std::function<void()> deed = std::exchange(deed_, {});
  if (deed && !endRequested_ && endSignal() == 0) deed();
}

void Busy::becomeSlow() {
  if (!held() || slow_) return;
  slow_ = true;
  for (Watcher* const watcher : watchers_) watcher->becameSlow();
}

void Busy::requestStop() {
  if (!held()) return;
  source_.request_stop();
  for (Watcher* const watcher : watchers_) watcher->stopWanted();
}

void Busy::requestEnd() {
  endRequested_ = true;
  requestStop();
}

void Busy::whenFree(Width width, std::function<void()> deed) {
  if (!held()) return deed();
  if (deed_ && width < width_) return;
  width_ = width;
  deed_ = std::move(deed);
}

}  // namespace platform
