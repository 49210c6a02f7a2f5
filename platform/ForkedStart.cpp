#include "platform/ForkedStart.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/Pointers.h"
#include "platform/StartReport.h"

namespace platform {
namespace {

constexpr int reportNumber = STDERR_FILENO + 1;
constexpr int failedStatus = 127;

void resetSignals() {
  for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

ForkedStart::ForkedStart(const ChildSettings& settings)
    : settings_(settings),
      arguments_(pointersTo(settings.arguments)),
      environment_(pointersTo(settings.environment)) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    systemError_ = errno;
    return;
  }
  answer_ = Descriptor(ends[0]);
  question_ = Descriptor(ends[1]);
}

void ForkedStart::become(int standard) const {
  resetSignals();
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(standard, number);
  const int question =
      question_.get() == reportNumber ? reportNumber : dup3(question_.get(), reportNumber, O_CLOEXEC);
  closefrom(reportNumber + 1);
  const std::string& folder = settings_.workingFolder;
  if (folder.empty() || chdir(folder.c_str()) == 0)
    execve(settings_.program.c_str(), arguments_.data(), environment_.data());
  const int systemError = errno;
  [[maybe_unused]] const ssize_t told = write(question, &systemError, sizeof systemError);
  _exit(failedStatus);
}

void ForkedStart::report(int systemError) const {
  [[maybe_unused]] const ssize_t told = write(question_.get(), &systemError, sizeof systemError);
}

int ForkedStart::result() {
  if (systemError_ != 0) return systemError_;
  question_.closeNow();
  return reportedError(answer_.get());
}

}  // namespace platform
