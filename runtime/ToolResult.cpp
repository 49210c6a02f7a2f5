#include "runtime/ToolResult.h"

#include <system_error>

namespace runtime {

std::string howItEnded(const ToolResult& result, std::string_view tool) {
  constexpr int signalled = 128;
  const std::string name(tool);
  if (result.stopped) return name + " was stopped";
  if (result.status == platform::notStarted) {
    const std::string why =
        result.systemError == 0 ? "" : ": " + std::generic_category().message(result.systemError);
    return name + " could not be started" + why;
  }
  if (result.status > signalled)
    return name + " was ended by signal " + std::to_string(result.status - signalled);
  return name + " ended with exit code " + std::to_string(result.status);
}

}  // namespace runtime
