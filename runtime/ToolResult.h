#pragma once

#include <string>
#include <string_view>

#include "platform/Process.h"

namespace runtime {

/// The text of a run that could not be started; callers compare the whole text.
constexpr const char* startFailure = "*ERROR*";

/// What a run of a tool came to: what it wrote, and how it ended. Nobody may drop the status: a tool that did
/// not end well has not done its step, whatever it wrote.
struct ToolResult {
  std::string text;                   ///< all that it wrote; `startFailure` when it could not be started
  int status = platform::notStarted;  ///< -1 not started, 128 + n ended by signal n, else its own
  int systemError = 0;                ///< errno of a failed start
  bool stopped = false;               ///< the job was asked to stop: the run was ended, or not begun

  bool good() const { return status == 0 && !stopped; }
  /// It ran to an end of its own, good or bad (not stopped, started, not ended by a signal).
  bool ended() const { return !stopped && status >= 0 && status <= 128; }
};

/// How a run ended that was not good: "tar was ended by signal 9", "tar could not be started: No such file or
/// directory", "tar ended with exit code 2".
std::string howItEnded(const ToolResult& result, std::string_view tool);

}  // namespace runtime
