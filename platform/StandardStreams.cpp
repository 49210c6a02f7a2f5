#include "platform/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace platform {

void openStandardStreams() {
  for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number)
    if (fcntl(number, F_GETFD) < 0) open("/dev/null", O_RDWR);  // gets the lowest free number: this one
}

}  // namespace platform
