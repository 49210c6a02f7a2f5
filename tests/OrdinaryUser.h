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

}  // namespace tests
