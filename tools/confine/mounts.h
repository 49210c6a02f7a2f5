#pragma once

#include <string>
#include <vector>

namespace confine {

/// Makes the whole file system of this mount namespace read-only except what lies in `folders` (resolved) and
/// was writable, and its device files unusable except the null device and the terminal. The current folder
/// stays what it was. False: errno.
bool closeMounts(const std::vector<std::string>& folders);

}  // namespace confine
