#include "archive/OpenArchives.h"

#include "archive/ExtractCommand.h"
#include "runtime/modAPI.h"

namespace archive {

ListedFile listedFile(const platform::Files& files, const std::string& path) {
  return {path, files.fileSize(path), files.modifiedTime(path)};
}

void OpenArchives::enter(Outer outer, UnpackedMember inner) {
  levels_.push_back({std::move(outer), std::move(inner)});
}

OpenArchives::Outer OpenArchives::leave() {
  Outer outer = std::move(levels_.back().outer);
  levels_.pop_back();
  return outer;
}

std::string OpenArchives::name() const {
  std::string name;
  for (auto level = levels_.rbegin(); level != levels_.rend(); ++level)
    name += runtime::GetFileName(level->inner.path) + " in ";
  return name + outermost().file.path;
}

std::string OpenArchives::proposal() const {
  return proposedOutFolder(levels_.back().outer.proposal + runtime::GetFileName(path()));
}

}  // namespace archive
