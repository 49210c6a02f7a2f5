#pragma once

#include <chrono>
#include <functional>

#include "download/Protocol.h"

namespace download {

using Clock = std::function<std::chrono::steady_clock::time_point()>;

/// The bound of a loop that waits for the unit: 200,000 polls of a tenth of a millisecond. They are counted
/// by the clock, so that they last as long on every machine.
class PollBudget {
 public:
  explicit PollBudget(const Clock& now) : now_(now), start_(now()) {}

  void restart() { start_ = now_(); }
  bool spent() const { return polls() >= limit; }
  int percent() const { return percentOf(polls(), limit); }

 private:
  static constexpr std::uint64_t limit = 200'000;
  std::uint64_t polls() const {
    return static_cast<std::uint64_t>((now_() - start_) / std::chrono::microseconds(100));
  }

  const Clock& now_;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace download
