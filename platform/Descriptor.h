#pragma once

#include <unistd.h>

#include <utility>

namespace platform {

/// Owns a file descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { closeNow(); }

  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }

  /// False when the system reports only now that something was not written.
  bool closeNow() {
    const int number = std::exchange(number_, -1);
    return number < 0 || close(number) == 0;
  }

 private:
  int number_ = -1;
};

}  // namespace platform
