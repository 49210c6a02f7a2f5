#include "tools/kt500sim_merge.h"

#include <filesystem>

namespace kt500sim {
namespace {

namespace fs = std::filesystem;

bool isFolder(const fs::path& path) { return fs::is_directory(fs::symlink_status(path)); }

/// The first folder that holds something where something else belongs.
fs::path conflictOf(const fs::path& from, const fs::path& into) {
  for (const auto& entry : fs::directory_iterator(from, fs::directory_options::skip_permission_denied)) {
    const fs::path place = into / entry.path().filename();
    if (!isFolder(place)) continue;
    const bool folder = isFolder(entry.path());
    if (!folder && !fs::is_empty(place)) return place;
    const fs::path inside = folder ? conflictOf(entry.path(), place) : fs::path();
    if (!inside.empty()) return inside;
  }
  return {};
}

void moveContents(const fs::path& from, const fs::path& into);

/// Its owner may change it from now on; the mode that it had.
fs::perms openUp(const fs::path& folder) {
  const fs::perms mode = fs::status(folder).permissions();
  fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add);
  return mode;
}

void moveFolder(const fs::path& from, const fs::path& place) {
  const fs::perms mode = openUp(from);
  if (isFolder(place)) {
    openUp(place);
    moveContents(from, place);
  } else {
    fs::remove(place);
    fs::rename(from, place);
  }
  fs::permissions(place, mode);
}

void moveContents(const fs::path& from, const fs::path& into) {
  for (const auto& entry : fs::directory_iterator(from)) {
    const fs::path place = into / entry.path().filename();
    if (isFolder(entry.path())) {
      moveFolder(entry.path(), place);
      continue;
    }
    if (isFolder(place)) fs::remove(place);
    fs::rename(entry.path(), place);
  }
}

}  // namespace

std::string mergeInto(const std::string& from, const std::string& into) {
  try {
    const fs::path conflict = conflictOf(from, into);
    if (!conflict.empty()) return "a folder is in the way: " + conflict.lexically_relative(into).string();
    moveContents(from, into);
    return "";
  } catch (const fs::filesystem_error& error) {
    return error.code().message() + ": " + error.path1().lexically_relative(into).string();
  }
}

}  // namespace kt500sim
