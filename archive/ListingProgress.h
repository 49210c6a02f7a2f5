#pragma once

#include <cstddef>

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

/// How much of a listing has been read after its line `index` (from 0) of `count`.
inline float listingPercent(std::size_t index, std::size_t count) {
  if (count < 2 || index + 1 >= count) return 100;
  return static_cast<float>(index) / static_cast<float>(count - 1) * 100;
}

}  // namespace archive
