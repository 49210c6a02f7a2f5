#pragma once

#include <string>

#include "platform/Files.h"

namespace archive {

/// Whether a tar that is not compressed ends without its two blocks of zeros. GNU tar 1.34, which is told to
/// read on behind such blocks, says nothing of that.
bool lacksEnd(const platform::Files& files, const std::string& path);

}  // namespace archive
