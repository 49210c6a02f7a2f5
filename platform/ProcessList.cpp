#include "platform/ProcessList.h"

#include <charconv>
#include <filesystem>
#include <string>

namespace platform {

std::vector<pid_t> processList() {
  std::vector<pid_t> processes;
  std::error_code error;
  for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename();
    pid_t pid = 0;
    const auto read = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (read.ec == std::errc() && read.ptr == name.data() + name.size()) processes.push_back(pid);
  }
  return processes;
}

}  // namespace platform
