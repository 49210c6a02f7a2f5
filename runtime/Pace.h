#pragma once

#include <chrono>

namespace runtime {

/// Tells when a step is worth showing: at most about 60 times a second.
class Pace {
 public:
  bool due() {
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) return false;
    next_ = now + std::chrono::milliseconds(16);
    return true;
  }

 private:
  std::chrono::steady_clock::time_point next_;
};

}  // namespace runtime
