#include "platform/ShellOpen.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

#include "platform/ProgramLookup.h"

namespace platform {
namespace {

constexpr const char* opener = "xdg-open";

/// In a forked child: only what may stand between fork and exec.
[[noreturn]] void becomeOpener(const char* program, const char* path, const char* folder) {
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGCHLD}) signal(number, SIG_DFL);
  const int nowhere = open("/dev/null", O_RDWR);
  for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, standard);
  closefrom(STDERR_FILENO + 1);
  if (*folder == '\0' || chdir(folder) == 0) execl(program, opener, path, nullptr);
  _exit(1);
}

/// The middle child ends at once, so that the opener is nobody's to wait for.
bool startDetached(const char* program, const char* path, const char* folder) {
  const pid_t middle = fork();
  if (middle == 0) {
    setsid();
    const pid_t last = fork();
    if (last == 0) becomeOpener(program, path, folder);
    _exit(last > 0 ? 0 : 1);
  }
  if (middle < 0) return false;
  int status = 0;
  while (waitpid(middle, &status, 0) < 0 && errno == EINTR) {
  }
  return status == 0;
}

}  // namespace

bool shellOpen(const DriveTable& drives, const Environment& environment, std::string_view windowsPath,
               std::string_view workingFolder) {
  const auto path = drives.toHost(windowsPath);
  const auto folder = drives.toHost(workingFolder);
  const auto program = findProgramIn(drives, environment.pathEntries(), {opener});
  if (!path || !program || access(path->c_str(), F_OK) != 0 || access(program->c_str(), X_OK) != 0)
    return false;
  return startDetached(program->c_str(), path->c_str(), folder ? folder->c_str() : "");
}

}  // namespace platform
