#include "platform/Signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace platform {
namespace {

// A handler reaches nothing but globals; these are touched by this file alone.
std::atomic<int> firstSignal = 0;
std::atomic<int> wakeDescriptor = -1;  // the end that the handler writes to
std::atomic<int> readDescriptor = -1;
std::atomic<pid_t> toolGroup = 0;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<pid_t>::is_always_lock_free);

void catchSignal(int number) {
  const int savedError = errno;
  int none = 0;
  firstSignal.compare_exchange_strong(none, number);
  // A full pipe is readable already.
  [[maybe_unused]] const ssize_t written = write(wakeDescriptor, "!", 1);
  const pid_t group = toolGroup;
  if (group > 0) kill(-group, number);
  errno = savedError;
}

bool isIgnored(int number) {
  struct sigaction old {};
  return sigaction(number, nullptr, &old) == 0 && old.sa_handler == SIG_IGN;
}

}  // namespace

void catchEndSignals() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
    readDescriptor = ends[0];
    wakeDescriptor = ends[1];
  }
  signal(SIGCHLD, SIG_DFL);  // where a caller ignores it, no tool's status could be read
  signal(SIGPIPE, SIG_IGN);  // a reader that has gone is a failed write
  struct sigaction action {};
  action.sa_handler = catchSignal;
  action.sa_flags = SA_RESTART;
  sigfillset(&action.sa_mask);
  for (const int number : {SIGINT, SIGTERM, SIGHUP})
    if (!isIgnored(number)) sigaction(number, &action, nullptr);
}

int endSignal() { return firstSignal; }

int endSignalDescriptor() { return readDescriptor; }

void passSignalsTo(pid_t group) { toolGroup = group; }

}  // namespace platform
