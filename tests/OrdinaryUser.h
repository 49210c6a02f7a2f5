#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace tests {

/// What a process of its own gives as its exit status; -1 when it was killed.
template <typename Act>
int inChild(Act act) {
  const pid_t child = fork();
  if (child == 0) _exit(act());
  int status = -1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Runs as an ordinary user, whom modes can stop; the child's answer.
template <typename Check>
bool asOrdinaryUser(Check check) {
  return inChild([&] { return (geteuid() != 0 || setuid(65534) == 0) && check() ? 0 : 1; }) == 0;
}

/// False where "/" itself is closed to everybody but root, as in a folder of root's own that serves as a
/// system: no ordinary user gets anywhere there.
inline bool ordinaryUserGetsAbout() {
  return asOrdinaryUser([] { return access("/tmp", X_OK) == 0; });
}
constexpr const char* rootIsClosed = "the root folder is closed to ordinary users";

}  // namespace tests
