#pragma once

#include <string>
#include <vector>

namespace confine {

/// From here on this process and its children can create, write, cut, rename, link and remove only below
/// `folders`, can write to the null device and the terminal, and can signal nobody but themselves where the
/// system knows that rule. Needs dropPrivileges() before. False: errno; ENOTSUP for a system that cannot move
/// a file between two folders under such rules.
bool restrictFiles(const std::vector<std::string>& folders);

}  // namespace confine
