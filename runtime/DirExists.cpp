#include "runtime/DirExists.h"

#include <cerrno>

#include "runtime/modAPI.h"

namespace runtime {

int DirExists(const platform::Files& files, std::string& path) {
  if (path.ends_with('\\')) path.pop_back();
  if (files.folderExists(path)) return 0;
  std::string parent = getFilePath(path);
  if (parent.empty()) return ENOENT;
  if (const int problem = DirExists(files, parent); problem != 0) return problem;
  return files.createFolder(path);
}

}  // namespace runtime
