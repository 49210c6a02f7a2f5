#pragma once

#include <stop_token>
#include <utility>

#include "platform/Signals.h"

namespace platform {

/// Whether what runs is to end. A job asks before each step and in every wait. An end signal counts too: it
/// is seen at once, also where no event loop runs.
class Stop {
 public:
  Stop() = default;  ///< only a signal stops it
  explicit Stop(std::stop_token token) : token_(std::move(token)) {}
  bool requested() const { return token_.stop_requested() || endSignal() != 0; }

 private:
  std::stop_token token_;
};

}  // namespace platform
