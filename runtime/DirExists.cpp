#include "runtime/DirExists.h"

#include "runtime/modAPI.h"

namespace runtime {

void DirExists(const platform::Files& files, std::string& path) {
  if (path.ends_with('\\')) path.pop_back();
  if (files.folderExists(path)) return;
  std::string parent = getFilePath(path);
  if (parent.empty()) return;
  DirExists(files, parent);
  files.createFolder(path);
}

}  // namespace runtime
