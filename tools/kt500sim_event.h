#pragma once

#include <string>
#include <string_view>

namespace kt500sim {

/// One line on standard output, at once.
void event(const std::string& line);

/// Bytes of a name for such a line: control characters and backslashes as \xHH.
std::string shown(std::string_view bytes);

}  // namespace kt500sim
