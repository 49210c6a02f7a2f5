#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace runtime {

/// Counts the members that tar (1.34, "v") names as it works, one a line; its remarks stand among them. A
/// name is printed before its member is worked on.
class NameCount {
 public:
  void add(std::string_view output);  ///< a line may be split between two calls
  std::size_t named() const { return named_; }
  std::size_t done() const { return named_ == 0 ? 0 : named_ - 1; }

 private:
  std::string head_;  // of the line that has begun, as far as it tells a remark
  std::size_t named_ = 0;
};

}  // namespace runtime
