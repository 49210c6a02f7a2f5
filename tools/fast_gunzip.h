#pragma once

#include <optional>
#include <string>

/// What `gzip -d` does from a file on standard input into a pipe on standard output, faster. The status to
/// end with; none when plain gzip has to do it, which then finds both as if nothing had happened.
///
/// Only a file from its first to its last byte is ours: whatever is damaged, cut, rare or behind the last
/// member goes to `plainGzip`, which reads the file again. What was delivered by then is dropped from its
/// output, so that bytes, words and status are always its own. Of a tar without its end it says so
/// (platform/CompressorWords.h).
std::optional<int> fastGunzip(const std::string& plainGzip);
