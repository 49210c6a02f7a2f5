#pragma once

#include <string_view>

namespace platform {

/// What our gzip says, besides plain gzip's words, of a sound file: there is a tar in it, and its two blocks
/// of zeros are missing.
constexpr std::string_view tarEndMissing = "gzip: a tar ends without its blocks of zeros";

}  // namespace platform
