#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace shell {

inline constexpr const char* helpFile = "Pakrune.chm";  ///< in the program's folder
inline constexpr std::string_view helpContents = "index.html";

/// The page of the help, maybe with an anchor, that explains a window. `windows`: the object names of the
/// window and of those that it belongs to, innermost first; the first that has a page decides, and without
/// one it is the contents.
std::string_view helpPage(const std::vector<std::string>& windows);

}  // namespace shell
