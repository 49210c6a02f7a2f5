#include "runtime/TimeOfDay.h"

#include <array>
#include <ctime>

namespace runtime {

std::string timeOfDay(std::string_view separator) {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  const std::string format = std::string("%H").append(separator).append("%M").append(separator) + "%S";
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format.c_str(), &parts)};
}

}  // namespace runtime
