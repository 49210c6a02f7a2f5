#include "platform/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <vector>

#include "platform/ConfinementWords.h"
#include "platform/Pointers.h"
#include "platform/Signals.h"
#include "platform/StartReport.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int pipeSize = 1 << 20;  // what an ordinary user may ask for; fewer changes between the two sides
constexpr int failedStatus = 127;  // of a child whose status somebody else took
constexpr std::chrono::milliseconds grace{500};

/// Holds the end signals back, so that none falls between a start and the word where to pass it.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &old_);
  }
  ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &old_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t old_{};
};

/// Owns what posix_spawn wants beside the texts.
class SpawnPlan {
 public:
  /// `report`: where a launcher reports; -1 for any other program.
  SpawnPlan(const std::string& workingFolder, int output, int report) {
    posix_spawnattr_init(&attributes_);
    posix_spawn_file_actions_init(&actions_);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setpgroup(&attributes_, 0);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    // The pipe goes first: in a program started without standard descriptors it may have one of their
    // numbers.
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, STDOUT_FILENO, STDERR_FILENO);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (report >= 0) posix_spawn_file_actions_adddup2(&actions_, report, reportDescriptor);
    posix_spawn_file_actions_addclosefrom_np(&actions_,
                                             report >= 0 ? reportDescriptor + 1 : STDERR_FILENO + 1);
    if (!workingFolder.empty()) posix_spawn_file_actions_addchdir_np(&actions_, workingFolder.c_str());
  }
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  const posix_spawnattr_t* attributes() const { return &attributes_; }
  const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawnattr_t attributes_{};
  posix_spawn_file_actions_t actions_{};
};

/// Both ends of a pipe, away from the numbers that a child's descriptors get; none, and errno says why.
struct ReportPipe {
  Descriptor ours;
  Descriptor childs;
};
std::optional<ReportPipe> openReport() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  ReportPipe report{Descriptor(ends[0]), Descriptor(ends[1])};
  report.childs = Descriptor(fcntl(report.childs.get(), F_DUPFD_CLOEXEC, reportDescriptor + 1));
  return report.childs ? std::optional(std::move(report)) : std::nullopt;
}

void wait(int first, int second, int milliseconds) {
  pollfd waited[] = {{first, POLLIN, 0}, {second, POLLIN, 0}};
  poll(waited, 2, milliseconds);  // a signal only makes the wait shorter
}

}  // namespace

std::optional<ChildProcess> ChildProcess::start(const ChildSettings& settings, Failure& failure,
                                                int& systemError) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    failure = Failure::Pipe;
    systemError = errno;
    return std::nullopt;
  }
  Descriptor output(ends[0]);
  const Descriptor input(ends[1]);
  fcntl(output.get(), F_SETPIPE_SZ, pipeSize);  // a smaller one is only slower
  fcntl(output.get(), F_SETFL, O_NONBLOCK);
  auto report = settings.reports ? openReport() : std::nullopt;
  if (settings.reports && !report) {
    failure = Failure::Pipe;
    systemError = errno;
    return std::nullopt;
  }
  const SpawnPlan plan(settings.workingFolder, input.get(), report ? report->childs.get() : -1);
  const SignalsHeld held;
  pid_t pid = 0;
  systemError = posix_spawn(&pid, settings.program.c_str(), plan.actions(), plan.attributes(),
                            pointersTo(settings.arguments).data(), pointersTo(settings.environment).data());
  if (systemError == 0 && report) {
    report->childs.closeNow();
    systemError = reportedError(report->ours.get());
    if (systemError != 0) waitpid(pid, nullptr, 0);
  }
  failure = systemError == 0 ? Failure::None : Failure::Start;
  if (systemError != 0) return std::nullopt;
  return ChildProcess(pid, std::move(output));
}

ChildProcess::ChildProcess(pid_t pid, Descriptor output)
    : pid_(pid), output_(std::move(output)), process_(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {
  passSignalsTo(pid);
}

void ChildProcess::receiveSignals() const { passSignalsTo(pid_); }

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, 0)),
      output_(std::move(other.output_)),
      process_(std::move(other.process_)) {}

ChildProcess::~ChildProcess() {
  if (pid_ != 0) status();
}

bool ChildProcess::hasEnded() const {
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

void ChildProcess::waitForOutput(int milliseconds) const { wait(output_.get(), -1, milliseconds); }

void ChildProcess::waitForEnd(int milliseconds) const { wait(process_.get(), -1, milliseconds); }

void ChildProcess::waitForOutputOrEnd(int milliseconds) const {
  wait(output_.get(), process_.get(), milliseconds);
}

std::size_t ChildProcess::read(char* buffer, std::size_t size) {
  const ssize_t got = ::read(output_.get(), buffer, size);
  if (got > 0) return static_cast<std::size_t>(got);
  if (got == 0 || (errno != EAGAIN && errno != EINTR)) output_.closeNow();
  return 0;
}

std::size_t ChildProcess::bytesWaiting() const {
  int count = 0;
  return output_ && ioctl(output_.get(), FIONREAD, &count) == 0 ? static_cast<std::size_t>(count) : 0;
}

std::string ChildProcess::end() {
  kill(-pid_, SIGTERM);
  const auto deadline = Clock::now() + grace;
  std::string rest;
  std::vector<char> buffer(1 << 16);
  while (hasOutput() || !hasEnded()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) break;
    if (hasOutput())
      waitForOutput(static_cast<int>(left));
    else
      waitForOutputOrEnd(static_cast<int>(left));
    rest.append(buffer.data(), read(buffer.data(), buffer.size()));
  }
  kill(-pid_, SIGKILL);  // not reaped yet, so the number is still the group's
  return rest;
}

int ChildProcess::status() {
  siginfo_t info{};
  while (waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
  }
  passSignalsTo(0);  // before the number can become somebody else's
  int status = 0;
  const pid_t reaped = waitpid(std::exchange(pid_, 0), &status, 0);
  if (reaped <= 0) return failedStatus;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace platform
