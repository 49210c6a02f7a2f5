#include "archive/PackedRoots.h"

#include <algorithm>

#include "platform/ResolvedPath.h"
#include "runtime/Slashes.h"
#include "runtime/modAPI.h"

namespace archive {
namespace {

std::string belowFolder(const std::string& folder, std::string name) {
  if (name.starts_with("./")) name.erase(0, 2);
  return runtime::withTrailingBackslash(folder) + runtime::withBackslashes(std::move(name));
}

}  // namespace

std::vector<std::string> resolvedNames(const platform::DriveTable& drives, const NameList& list) {
  const std::string folder = platform::resolvedFolder(drives, list.workingFolder);
  std::vector<std::string> paths;
  for (const std::string& name : list.names) {
    const std::string path = belowFolder(folder, std::string(runtime::withoutSlash(name)));
    if (name.starts_with('/'))
      paths.push_back(platform::resolvedPath(drives, name));
    else
      paths.push_back(name.ends_with('/') ? platform::resolvedFolder(drives, path) : path);
  }
  return paths;
}

std::vector<PackedRoot> packedRoots(const platform::DriveTable& drives, const NameList& list, bool staged,
                                    bool insideUsr8) {
  std::vector<PackedRoot> roots;
  const std::vector<std::string> paths = resolvedNames(drives, list);
  const std::string above = staged && insideUsr8 ? "../usr8/" : "";
  for (std::size_t i = 0; i < paths.size(); ++i)
    roots.push_back({paths[i], above + std::string(runtime::withoutSlash(list.names[i]))});
  if (staged && !insideUsr8) {
    const std::string folder = platform::resolvedFolder(drives, list.workingFolder);
    roots.push_back({belowFolder(folder, "usr8"), "../usr8"});
  }
  return roots;
}

std::string memberName(const std::vector<PackedRoot>& roots, std::string_view resolved) {
  for (const auto& [path, member] : roots) {
    if (path.empty() || !resolved.starts_with(path)) continue;
    std::string below(resolved.substr(path.size()));
    if (!below.empty() && below.front() != '\\') continue;
    std::replace(below.begin(), below.end(), '\\', '/');
    return member + below;
  }
  return "";
}

}  // namespace archive
