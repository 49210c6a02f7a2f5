#include "platform/DetachedStart.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/ForkedStart.h"

namespace platform {

int startDetached(const ChildSettings& settings) {
  ForkedStart start(settings);
  const Descriptor nowhere(open("/dev/null", O_RDWR | O_CLOEXEC));
  // The middle child ends at once, so that the program is nobody's to wait for.
  const pid_t middle = fork();
  if (middle == 0) {
    setsid();
    const pid_t last = fork();
    if (last == 0) start.become(nowhere.get());
    if (last < 0) start.report(errno);
    _exit(0);
  }
  if (middle < 0) return errno;
  while (waitpid(middle, nullptr, 0) < 0 && errno == EINTR) {
  }
  return start.result();
}

std::vector<std::string> usersEnvironment() {
  std::vector<std::string> texts;
  for (char** text = environ; *text != nullptr; ++text) texts.emplace_back(*text);
  return texts;
}

}  // namespace platform
