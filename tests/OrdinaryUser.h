#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace tests {

/// Runs as an ordinary user, whom modes can stop; the child's answer.
template <typename Check>
bool asOrdinaryUser(Check check) {
  const pid_t child = fork();
  if (child == 0) _exit((geteuid() != 0 || setuid(65534) == 0) && check() ? 0 : 1);
  int status = 1;
  waitpid(child, &status, 0);
  return status == 0;
}

/// False where "/" itself is closed to everybody but root, as in a folder of root's own that serves as a
/// system: no ordinary user gets anywhere there.
inline bool ordinaryUserGetsAbout() {
  return asOrdinaryUser([] { return access("/tmp", X_OK) == 0; });
}
constexpr const char* rootIsClosed = "the root folder is closed to ordinary users";

}  // namespace tests
