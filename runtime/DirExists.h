#pragma once

#include <string>

#include "platform/Files.h"

namespace runtime {

/// Makes a folder exist, missing parents first; takes one trailing backslash off the caller's text. 0, or the
/// errno of what could not be made.
int DirExists(const platform::Files& files, std::string& path);

}  // namespace runtime
