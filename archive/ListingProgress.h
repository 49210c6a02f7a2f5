#pragma once

#include <cstddef>
#include <functional>

namespace archive {

struct Listing;

/// Whoever watches an archive being read.
class ListingProgress {
 public:
  virtual ~ListingProgress() = default;
  virtual void reading() {}                     ///< there is an archive, and its contents are asked for
  virtual void filling() {}                     ///< they came, and go into the tree now
  virtual void showPercent(float percent) = 0;  ///< 0 to 100; pending events run
  virtual void listed(const Listing&) {}        ///< a step of another job: how it ended, and the tree
  /// So many members are unpacked next (0: not known). What takes how many are done; none: the run shows its
  /// console.
  virtual std::function<void(std::size_t done)> unpacking(std::size_t /*members*/) { return {}; }
};

/// How much of a listing has been read after its line `index` (from 0) of `count`.
inline float listingPercent(std::size_t index, std::size_t count) {
  if (count < 2 || index + 1 >= count) return 100;
  return static_cast<float>(index) / static_cast<float>(count - 1) * 100;
}

}  // namespace archive
