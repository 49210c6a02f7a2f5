#pragma once

#include <chrono>

namespace archive {

struct Listing;

/// Whoever watches a listing being read.
class ListingProgress {
 public:
  virtual ~ListingProgress() = default;
  virtual void reading() {}                     ///< there is an archive, and its contents are asked for
  virtual void filling() {}                     ///< they came, and go into the tree now
  virtual void showPercent(float percent) = 0;  ///< 0 to 100; pending events run
  virtual void listed(const Listing&) {}        ///< a step of another job: how it ended, and the tree
};

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

/// How much of a listing has been read after its line `index` (from 0) of `count`.
inline float listingPercent(std::size_t index, std::size_t count) {
  if (count < 2 || index + 1 >= count) return 100;
  return static_cast<float>(index) / static_cast<float>(count - 1) * 100;
}

}  // namespace archive
