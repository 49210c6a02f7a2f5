#include "shell/LogText.h"

#include <utility>

#include "runtime/TimeOfDay.h"

namespace shell {

LogText::LogText() : LogText([] { return runtime::timeOfDay(":"); }) {}

LogText::LogText(Clock clock) : clock_(std::move(clock)) {}

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
