// Preloaded: a disk that takes longer than anybody waits for it. Says once that it is at work.

#include <unistd.h>

extern "C" int syncfs(int) {
  constexpr unsigned tooLong = 30;  // seconds
  if (write(STDOUT_FILENO, "at work\n", 8) != 8) return -1;
  for (unsigned left = tooLong; left > 0;) left = sleep(left);
  return 0;
}
