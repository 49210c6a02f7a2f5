#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace runtime {

/// A name of a tool without the "/" at its end, as a folder and a file of that name share it. A lone "/"
/// stays.
inline std::string_view withoutSlash(std::string_view name) {
  while (name.size() > 1 && name.ends_with('/')) name.remove_suffix(1);
  return name;
}

/// Such a name as a part of a Windows path.
inline std::string withBackslashes(std::string name) {
  std::replace(name.begin(), name.end(), '/', '\\');
  return name;
}

}  // namespace runtime
