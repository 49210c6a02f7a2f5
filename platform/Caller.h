#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Who the program runs as, as far as it decides what becomes of modes.
struct Caller {
  bool root = false;
  unsigned user = 0;
  std::vector<unsigned> groups;  ///< effective and supplementary
  unsigned umask = 0;
};

Caller caller();

}  // namespace platform
