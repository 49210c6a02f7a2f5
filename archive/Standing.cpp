#include "archive/Standing.h"

#include <string_view>

namespace archive {

bool Standing::at(const std::string& path) {
  const std::string_view folder = std::string_view(path).substr(0, path.rfind('\\') + 1);
  if (!missing_.empty() && folder.starts_with(missing_)) return false;
  if (folder != there_) {
    if (!files_.folderExists(folder)) {
      missing_ = folder;
      return false;
    }
    there_ = folder;
  }
  return files_.entryExists(path);
}

}  // namespace archive
