#include "platform/ProgramLookup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

bool isFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isExecutable(const std::string& path) {
  return faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

}  // namespace

std::optional<std::string> findProgramIn(const DriveTable& drives, const std::vector<std::string>& folders,
                                         const std::vector<std::string>& names) {
  std::optional<std::string> barred;
  for (const std::string& folder : folders) {
    const auto hostFolder = drives.toHost(folder);
    if (!hostFolder) continue;
    for (const std::string& name : names) {
      const std::string path = *hostFolder + '/' + name;
      if (!isFile(path)) continue;
      if (isExecutable(path)) return path;
      if (!barred) barred = path;
    }
  }
  return barred;
}

}  // namespace platform
