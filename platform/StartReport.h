#pragma once

#include <unistd.h>

#include <cerrno>

namespace platform {

/// What a child says through a pipe of its start: 0 once all writing ends have gone without a word, for the
/// program runs then, else the errno of what failed.
inline int reportedError(int pipe) {
  int systemError = 0;
  ssize_t got = 0;
  do {
    got = read(pipe, &systemError, sizeof systemError);
  } while (got < 0 && errno == EINTR);
  return got == sizeof systemError ? systemError : 0;
}

}  // namespace platform
