// Preloaded: a disk that takes longer than anybody waits for it, and says once that it is at work; with
// BROKEN_DISK in the environment, one that keeps nothing.

#include <unistd.h>

#include <cerrno>
#include <cstdlib>

extern "C" int syncfs(int) {
  if (getenv("BROKEN_DISK") != nullptr) {
    errno = EIO;
    return -1;
  }
  constexpr unsigned tooLong = 30;  // seconds
  if (write(STDOUT_FILENO, "at work\n", 8) != 8) return -1;
  for (unsigned left = tooLong; left > 0;) left = sleep(left);
  return 0;
}
