#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Names on disk are bytes; names inside the program are UTF-8 texts in Windows form. What a Windows
/// name cannot hold (`\ : * ? " < > |`, control characters, bytes that are not valid UTF-8, and the
/// bytes of a real U+F000..U+F0FF) is held as U+F000 + code, one code point a byte. One to one.

/// One component of a host path (bytes, no '/') in the form that the program uses inside.
std::string holdName(std::string_view hostBytes);

/// The bytes on disk of a name or text that may hold held characters. The inverse of holdName.
std::string releaseName(std::string_view inner);

/// The text for lists and labels: the character that is held, and `\xHH` for a held control
/// character, a byte that is not valid UTF-8, and each byte of a character that changes the direction
/// of the text around it.
std::string shownName(std::string_view inner);

}  // namespace platform
