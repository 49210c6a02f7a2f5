#pragma once

#include <functional>
#include <string>

#include "runtime/UserInterface.h"

namespace shell {

/// The log: one text, lines separated by CR LF, no line end behind the last. The log pane shows it; without a
/// window each entry goes to `onEntry` (standard error).
class LogText : public runtime::Log {
 public:
  using Clock = std::function<std::string()>;  ///< the time of day, HH:MM:SS
  LogText();
  explicit LogText(Clock clock);

  /// "Log start: " and the time; what was reported before stands behind it.
  void start();
  void append(const std::string& text) override;
  std::size_t size() const override { return text_.size(); }
  std::string since(std::size_t place) const override { return text_.substr(place); }
  const std::string& text() const { return text_; }
  void setOnEntry(std::function<void(const std::string&)> onEntry) { onEntry_ = std::move(onEntry); }

 private:
  Clock clock_;
  std::string text_;
  std::function<void(const std::string&)> onEntry_;
};

}  // namespace shell
