#pragma once

#include <string>
#include <string_view>

#include "platform/DriveTable.h"

namespace platform {

/// What somebody typed, as the path that the program works with; or, in words, why it names nothing here.
struct TypedPath {
  std::string path;     ///< absolute Windows path, names in held form, ".." followed; empty with a problem
  std::string problem;  ///< empty: none
  explicit operator bool() const { return problem.empty(); }
};

/// The one border that typed paths pass: text boxes, pickers, the command line. Behind it nobody looks at the
/// text again. Understood are
///
///   C:\x  c:/x                 a drive; both separators; a ":" and the like in a name belong to it
///   /x  ~  ~/x                 the host's; a "\" belongs to the name; /cygdrive/c/x where C: is a drive
///   anything else              relative to `folder` (Windows form; empty: there is none); both separators,
///                              unless such an entry is there by that very name
///
/// each also in double quotes. A separator at the end stays. Blanks around it count only where they are part
/// of a name that is there.
TypedPath typedPath(const DriveTable& drives, std::string_view text, std::string_view folder);

/// The user's home folder, a host path.
std::string homeFolder();

}  // namespace platform
