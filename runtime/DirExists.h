#pragma once

#include <string>

#include "platform/Files.h"

namespace runtime {

/// Makes a folder exist, missing parents first; takes one trailing backslash off the caller's text. A folder
/// that cannot be made is the caller's to notice.
void DirExists(const platform::Files& files, std::string& path);

}  // namespace runtime
