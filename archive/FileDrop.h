#pragma once

#include <string>
#include <string_view>

namespace archive {

/// The clipboard block of one copied file: a 20-byte header (five 32-bit fields, lowest byte first: the
/// offset of the file list, which is 20, then drop point x and y, the non-client and the wide-character flag,
/// all 0), and at that offset the path, ended by two NULs.
std::string fileDropBlock(std::string_view path);

}  // namespace archive
