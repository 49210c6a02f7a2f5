#include "shell/LogText.h"

#include <array>
#include <ctime>

namespace shell {

LogText::LogText(Clock clock) : clock_(std::move(clock)) {}

std::string LogText::timeOfDay() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, 16> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%H:%M:%S", &parts)};
}

void LogText::start() {
  const std::string first = "Log start: " + clock_();
  text_ = first + text_;
  if (onEntry_) onEntry_(first);
}

void LogText::append(const std::string& text) {
  const std::string entry = text.starts_with(' ') ? clock_() + text : text;
  text_ += "\r\n" + entry;
  if (onEntry_) onEntry_(entry);
}

}  // namespace shell
