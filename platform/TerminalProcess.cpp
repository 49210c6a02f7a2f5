#include "platform/TerminalProcess.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "platform/ForkedStart.h"
#include "platform/ProcessList.h"

namespace platform {
namespace {

constexpr winsize screenSize{25, 80, 0, 0};

struct Terminal {
  Descriptor ours;
  Descriptor programs;
};

/// Both ends of a new pseudo terminal; none, and errno says why.
std::optional<Terminal> openTerminal() {
  Terminal terminal;
  terminal.ours = Descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  std::array<char, 64> name{};
  if (!terminal.ours || grantpt(terminal.ours.get()) != 0 || unlockpt(terminal.ours.get()) != 0 ||
      ptsname_r(terminal.ours.get(), name.data(), name.size()) != 0)
    return std::nullopt;
  terminal.programs = Descriptor(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!terminal.programs) return std::nullopt;
  ioctl(terminal.programs.get(), TIOCSWINSZ, &screenSize);
  return terminal;
}

std::vector<pid_t> membersOf(pid_t session) {
  std::vector<pid_t> members = processList();
  std::erase_if(members, [session](pid_t pid) { return getsid(pid) != session; });
  return members;
}

bool hasEnded(pid_t pid) {
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

}  // namespace

std::optional<TerminalProcess> TerminalProcess::start(const ChildSettings& settings, int& systemError) {
  auto terminal = openTerminal();
  if (!terminal) {
    systemError = errno;
    return std::nullopt;
  }
  ForkedStart start(settings);
  const pid_t pid = fork();
  if (pid == 0) {
    setsid();
    ioctl(terminal->programs.get(), TIOCSCTTY, 0);
    start.become(terminal->programs.get());
  }
  systemError = pid < 0 ? errno : start.result();
  if (pid > 0 && systemError != 0) waitpid(pid, nullptr, 0);
  if (systemError != 0) return std::nullopt;
  return TerminalProcess(pid, std::move(terminal->ours), std::move(terminal->programs));
}

TerminalProcess::TerminalProcess(pid_t pid, Descriptor terminal, Descriptor programsEnd)
    : session_(pid),
      terminal_(std::move(terminal)),
      programsEnd_(std::move(programsEnd)),
      process_(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {}

TerminalProcess::TerminalProcess(TerminalProcess&& other) noexcept
    : session_(std::exchange(other.session_, 0)),
      terminal_(std::move(other.terminal_)),
      programsEnd_(std::move(other.programsEnd_)),
      process_(std::move(other.process_)) {}

TerminalProcess::~TerminalProcess() {
  if (session_ == 0) return;
  signalSession(SIGKILL);
  while (waitpid(session_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

std::size_t TerminalProcess::read(char* buffer, std::size_t size) {
  const ssize_t got = ::read(terminal_.get(), buffer, size);
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

void TerminalProcess::type(std::string_view bytes) {
  [[maybe_unused]] const ssize_t taken = write(terminal_.get(), bytes.data(), bytes.size());
}

void TerminalProcess::signalSession(int number) const {
  for (const pid_t pid : membersOf(session_)) kill(pid, number);
}

bool TerminalProcess::sessionRuns() const {
  const std::vector<pid_t> members = membersOf(session_);
  return std::any_of(members.begin(), members.end(),
                     [this](pid_t pid) { return pid != session_ || !hasEnded(pid); });
}

ProgramEnd TerminalProcess::end() const {
  siginfo_t info{};
  // Not reaped before this object goes: until then its number stands for its session.
  while (waitid(P_PID, static_cast<id_t>(session_), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
  }
  return info.si_code == CLD_EXITED ? ProgramEnd{info.si_status, 0} : ProgramEnd{0, info.si_status};
}

}  // namespace platform
