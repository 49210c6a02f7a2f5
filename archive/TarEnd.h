#pragma once

#include <string>
#include <string_view>

#include "platform/Files.h"

namespace archive {

/// Whether a tar that is not compressed ends without its two blocks of zeros. GNU tar 1.34, which is told to
/// read on behind such blocks, says nothing of that.
bool lacksEnd(const platform::Files& files, const std::string& path);

/// The same of a tar in gzip's form, as a run printed that read all of it. Nobody says it of other forms.
bool saysEndIsMissing(std::string_view printed);

}  // namespace archive
