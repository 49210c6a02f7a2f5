#include "runtime/DirExists.h"

#include <cerrno>

#include "runtime/modAPI.h"

namespace runtime {
namespace {

constexpr mode_t folderMode = 0777;  // what the umask leaves of it

}  // namespace

int DirExists(const platform::Files& files, std::string& path) {
  if (path.ends_with('\\')) path.pop_back();
  if (files.folderExists(path)) return 0;
  std::string parent = getFilePath(path);
  if (parent.empty()) return ENOENT;
  if (const int problem = DirExists(files, parent); problem != 0) return problem;
  const int problem = files.createFolderExclusively(path, folderMode);
  return files.folderExists(path) ? 0 : problem;  // somebody else may have made it meanwhile
}

}  // namespace runtime
