#pragma once

#include <string>
#include <string_view>

namespace browser {

/// A UTF-8 text with every letter in lower case, for comparing without regard to case. Code point by code
/// point, whatever the user's locale; the bytes of the result sort like its code points.
std::string foldCase(std::string_view text);

}  // namespace browser
