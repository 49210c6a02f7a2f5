#include "platform/PortHolders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string_view>

#include "platform/HeldName.h"
#include "platform/ProcessList.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

std::string processFolder(pid_t process) { return "/proc/" + std::to_string(process); }

/// Asks no server about a file on a network, which might never answer.
bool leadsTo(const fs::path& descriptor, dev_t device) {
  struct statx status {};
  return statx(AT_FDCWD, descriptor.c_str(), AT_STATX_DONT_SYNC, STATX_TYPE, &status) == 0 &&
         S_ISCHR(status.stx_mode) && makedev(status.stx_rdev_major, status.stx_rdev_minor) == device;
}

bool hasOpen(pid_t process, dev_t device) {
  std::error_code error;
  for (fs::directory_iterator entry(processFolder(process) + "/fd", error), end; !error && entry != end;
       entry.increment(error))
    if (leadsTo(entry->path(), device)) return true;
  return false;
}

/// ttyUSB0, and for /dev/pts/3 both "3" and "pts_3"; also of what a link leads to.
std::set<std::string> lockNames(const std::string& device) {
  std::set<std::string> names;
  std::error_code error;
  for (const fs::path& path : {fs::path(device), fs::weakly_canonical(device, error)}) {
    names.insert(path.filename());
    std::string below = path.lexically_relative("/dev");
    std::replace(below.begin(), below.end(), '/', '_');
    if (!below.starts_with(".")) names.insert(below);
  }
  return names;
}

/// Digits behind blanks (what follows them is a program's name), or else the bytes of an int.
pid_t processIn(std::string_view bytes) {
  pid_t process = 0;
  if (bytes.size() == sizeof process && bytes.find_first_not_of("0123456789 \n") != bytes.npos) {
    std::memcpy(&process, bytes.data(), sizeof process);
    return process;
  }
  bytes.remove_prefix(std::min(bytes.find_first_not_of(' '), bytes.size()));
  std::from_chars(bytes.data(), bytes.data() + bytes.size(), process);
  return process;
}

bool isAnothers(pid_t process) {
  return process > 0 && process != getpid() && (kill(process, 0) == 0 || errno != ESRCH);
}

}  // namespace

pid_t descriptorHolder(dev_t device) {
  for (const pid_t process : processList())
    if (hasOpen(process, device)) return process;
  return 0;
}

pid_t lockFileHolder(const std::string& device, const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    for (const std::string& name : lockNames(device)) {
      std::ifstream file(folder + "/LCK.." + name, std::ios::binary);
      std::string bytes(64, '\0');
      file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
      bytes.resize(static_cast<std::size_t>(file.gcount()));
      if (const pid_t process = processIn(bytes); isAnothers(process)) return process;
    }
  }
  return 0;
}

std::string processWords(pid_t process) {
  if (process <= 0) return "another program";
  std::string name;
  std::ifstream file(processFolder(process) + "/comm");
  std::getline(file, name);
  const std::string number = "process " + std::to_string(process);
  return name.empty() ? number : shownName(holdName(name)) + " (" + number + ')';
}

}  // namespace platform
