#pragma once

#include <string>
#include <string_view>

namespace runtime {

/// The local time of day now, 24-hour: hours, minutes and seconds, two digits each, with `separator` between
/// them.
std::string timeOfDay(std::string_view separator);

}  // namespace runtime
