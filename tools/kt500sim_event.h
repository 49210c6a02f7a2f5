#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace kt500sim {

/// One line on standard output, at once.
void event(const std::string& line);

/// Bytes of a name for such a line: control characters and backslashes as \xHH.
std::string shown(std::string_view bytes);

/// What happens to one client, a line each. Where several are served at once its address stands in front.
class Events {
 public:
  /// `served`: how many clients there are; lent, this one is counted for as long as it lives.
  Events(std::string client, std::atomic<int>& served) : client_(std::move(client)), served_(served) {
    ++served_;
  }
  Events(const Events&) = delete;
  Events& operator=(const Events&) = delete;
  ~Events() { --served_; }

  void operator()(const std::string& line) const { event(served_ > 1 ? client_ + " " + line : line); }

 private:
  std::string client_;
  std::atomic<int>& served_;
};

}  // namespace kt500sim
