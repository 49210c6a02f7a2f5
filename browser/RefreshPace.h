#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace browser {

/// When a folder that changes is to be looked at again: after half a second of quiet, three seconds after the
/// first change at the latest, and never sooner than ten times as long as the last look took.
class RefreshPace {
 public:
  using Clock = std::chrono::steady_clock;

  void changed(Clock::time_point now) {
    if (!first_) first_ = now;
    last_ = now;
  }
  void forget() { first_.reset(); }  ///< a look begins, which covers all changes so far
  void rest(Clock::time_point now, Clock::duration took) {
    rested_ = now + restTimes * took;
  }                                               ///< it has ended
  std::optional<Clock::time_point> due() const {  ///< none: nothing has changed
    if (!first_) return std::nullopt;
    return std::max(std::min(last_ + quiet, *first_ + patience), rested_);
  }

 private:
  static constexpr std::chrono::milliseconds quiet{500};
  static constexpr std::chrono::seconds patience{3};
  static constexpr int restTimes = 10;

  std::optional<Clock::time_point> first_;
  Clock::time_point last_;
  Clock::time_point rested_;
};

}  // namespace browser
