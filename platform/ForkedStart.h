#pragma once

#include <vector>

#include "platform/ChildProcess.h"
#include "platform/Descriptor.h"

namespace platform {

/// For the starts that posix_spawn cannot make (a program that is nobody's child, one on a terminal of its
/// own): made before the fork, since between fork and exec nothing may be allocated.
class ForkedStart {
 public:
  explicit ForkedStart(const ChildSettings& settings);  ///< which must live as long

  /// In the child: becomes the program. `standard` becomes its three standard descriptors, no other one is
  /// passed on; signal mask and dispositions are the default ones.
  [[noreturn]] void become(int standard) const;
  void report(int systemError) const;  ///< in the child: why it never came to that

  /// In the parent, after the fork: waits until the program runs. 0, or the errno of what failed.
  int result();

 private:
  const ChildSettings& settings_;
  std::vector<char*> arguments_;
  std::vector<char*> environment_;
  Descriptor answer_;    // ends without a byte once the program runs
  Descriptor question_;  // the child's end
  int systemError_ = 0;  // of the pipe
};

}  // namespace platform
