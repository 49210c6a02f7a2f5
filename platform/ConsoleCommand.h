#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/TerminalProcess.h"

namespace platform {

/// A console's command, as the command processor reads `/c ""PROGRAM" ARGUMENT..." & pause` (or /k): the
/// first and the last quote of the line go, `&` outside quotes separates commands. One program in quotes and
/// then `pause` are all that is accepted; nothing is expanded or looked up.
struct ConsoleCommand {
  std::string refusal;                 ///< in words; empty: none, and the rest holds
  bool staysOpen = false;              ///< /k: also behind the pause
  std::string program;                 ///< Windows form, as it stood between the quotes
  std::vector<std::string> arguments;  ///< inner texts

  std::string title() const;  ///< the program's name and the file, its last argument
  std::string name() const;   ///< the program's, without folder
};

ConsoleCommand readConsoleCommand(std::string_view text);

/// A line about how a program of that name ended.
std::string endLine(const std::string& name, const ProgramEnd& end);

}  // namespace platform
