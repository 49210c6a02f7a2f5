#pragma once

#include <string>
#include <string_view>

namespace runtime {

/// The bytes of a name as GNU tar and ls print it with QUOTING_STYLE=escape: \a \b \t \n \v \f \r, "\\",
/// three octal digits, and ls's "\ " for a blank. A backslash before anything else stands for itself.
std::string unescaped(std::string_view printed);

}  // namespace runtime
