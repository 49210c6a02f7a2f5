#include "tools/confine/supervise.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace confine {
namespace {

using platform::Descriptor;

class AllSignalsBlocked {
 public:
  AllSignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, &old_);
  }
  void undo() const { sigprocmask(SIG_SETMASK, &old_, nullptr); }

 private:
  sigset_t old_{};
};

/// Who reads the output sees its end when the tool closes it, not when the last of those who wait ends.
void closeStreams(Descriptor& report) {
  report.closeNow();
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(stream);
}

[[noreturn]] void endAs(int status) {
  if (!WIFSIGNALED(status)) _exit(WEXITSTATUS(status));
  const int number = WTERMSIG(status);
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);  // if one was wanted, the tool has left it
  sigset_t its;
  sigemptyset(&its);
  sigaddset(&its, number);
  signal(number, SIG_DFL);
  raise(number);
  sigprocmask(SIG_UNBLOCK, &its, nullptr);
  _exit(128 + number);
}

[[noreturn]] void waitAsCaller(pid_t first, const int& seen) {
  int status = 0;
  while (waitpid(first, &status, 0) < 0 && errno == EINTR) {
  }
  endAs(WIFEXITED(status) && WEXITSTATUS(status) == 0 ? seen : status);
}

/// The first process of a namespace takes in the orphans of the others. No signal of its own ends it, so what
/// became of the tool goes through memory.
[[noreturn]] void waitAsFirst(pid_t tool, int& seen) {
  int status = 0;
  while (waitpid(-1, &status, 0) != tool) {
  }
  seen = status;
  _exit(0);
}

bool hasEnded(const Descriptor& process) {
  pollfd waited{process.get(), POLLIN, 0};
  return poll(&waited, 1, 0) != 0;
}

}  // namespace

bool endWith(pid_t parent) {
  if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) return false;
  if (getppid() == parent) return true;
  errno = ESRCH;  // it ended before it was listened to
  return false;
}

bool becomeSupervised(Descriptor& report) {
  void* const page = mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  const Descriptor caller(static_cast<int>(syscall(SYS_pidfd_open, getpid(), 0)));
  if (page == MAP_FAILED || !caller) return false;
  int& seen = *static_cast<int*>(page);
  const AllSignalsBlocked blocked;
  const pid_t first = fork();
  if (first > 0) {
    closeStreams(report);
    waitAsCaller(first, seen);
  }
  // Seen from within, every parent outside has the number 0.
  if (first < 0 || prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || hasEnded(caller)) return false;
  const pid_t tool = fork();
  if (tool > 0) {
    closeStreams(report);
    waitAsFirst(tool, seen);
  }
  blocked.undo();
  return tool == 0;
}

}  // namespace confine
