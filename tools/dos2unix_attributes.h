#pragma once

#include <sys/stat.h>

namespace dos2unix {

/// Owner, group, mode and extended attributes, access lists among them. False: not all could be given.
bool copyAttributes(int from, int to, const struct stat& old);

/// Gives a mode back that writing took the set-user-id bit from; of somebody else's file only its owner
/// could.
bool keepMode(int file, mode_t old);

}  // namespace dos2unix
