#include "tools/confine/folders.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace confine {
namespace {

bool liesIn(const std::string& path, const std::string& folder) {
  return folder == "/" || path == folder || path.starts_with(folder + '/');
}

}  // namespace

std::optional<std::vector<std::string>> resolvedFolders(const std::vector<const char*>& folders) {
  std::vector<std::string> paths;
  for (const char* const folder : folders) {
    const std::unique_ptr<char, decltype(&std::free)> path(realpath(folder, nullptr), std::free);
    if (!path) return std::nullopt;
    paths.emplace_back(path.get());
  }
  std::sort(paths.begin(), paths.end());  // a folder stands before what lies in it
  std::vector<std::string> outermost;
  for (std::string& path : paths)
    if (std::none_of(outermost.begin(), outermost.end(),
                     [&](const std::string& folder) { return liesIn(path, folder); }))
      outermost.push_back(std::move(path));
  return outermost;
}

}  // namespace confine
