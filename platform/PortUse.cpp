#include "platform/PortUse.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/Descriptor.h"
#include "platform/PortHolders.h"

namespace platform {
namespace {

PortState failed(int systemError) {
  const bool gone =
      systemError == ENOENT || systemError == ENOTDIR || systemError == ENXIO || systemError == ENODEV;
  PortUse use = gone ? PortUse::NoSuchPort : PortUse::CannotBeOpened;
  if (systemError == EBUSY) use = PortUse::Busy;
  return {use, std::generic_category().message(systemError)};
}

PortState busy(const char* how, pid_t holder) { return {PortUse::Busy, how + processWords(holder)}; }

/// What only an open port tells.
PortState stateOf(int port) {
  termios settings{};
  if (tcgetattr(port, &settings) != 0) return failed(errno);
  int exclusive = 0;
  // Root may open a port that another program has for itself.
  if (ioctl(port, TIOCGEXCL, &exclusive) == 0 && exclusive != 0) return busy("it is kept by ", 0);
  struct flock wanted {};
  wanted.l_type = F_WRLCK;
  wanted.l_whence = SEEK_SET;
  if (fcntl(port, F_GETLK, &wanted) == 0 && wanted.l_type != F_UNLCK)
    return busy("it is locked by ", wanted.l_pid);
  if (flock(port, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return busy("it is locked by ", 0);
  return {};
}

}  // namespace

std::vector<std::string> lockFolders() { return {"/var/lock", "/run/lock"}; }

PortState portState(const std::string& device, const std::vector<std::string>& locks) {
  struct stat status {};
  if (stat(device.c_str(), &status) != 0) return failed(errno);
  if (!S_ISCHR(status.st_mode)) return failed(ENOTTY);
  // To open a port and close it again moves its lines: not under the hands of whoever has it.
  if (const pid_t holder = lockFileHolder(device, locks)) return busy("its lock file is held by ", holder);
  if (const pid_t holder = descriptorHolder(status.st_rdev)) return busy("it is open in ", holder);
  const Descriptor port(open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  return port ? stateOf(port.get()) : failed(errno);
}

}  // namespace platform
