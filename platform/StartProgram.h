#pragma once

#include <string>
#include <string_view>

#include "platform/DriveTable.h"
#include "platform/Environment.h"

namespace platform {

/// A program that gets a window of its own and is then left to itself.
struct ProgramStart {
  std::string commandText;    ///< one text, `cmd.exe ...` or `explorer FOLDER`
  std::string workingFolder;  ///< Windows form; empty: this process's own
  std::string programFolder;  ///< Windows form, trailing backslash; `bin\cmd.exe` stands in it
};

/// Starts it without waiting; it outlives this program and gets the user's own environment, not the tools'.
/// The first word decides before any folder is looked into, and no shell is involved: `cmd.exe` is the
/// console program of ours, which gets all that follows as one argument, untouched; what follows `explorer `
/// is one folder, blanks included, for the desktop's file manager. Empty, or in words why not.
std::string startProgram(const DriveTable& drives, const Environment& environment, const ProgramStart& start);

}  // namespace platform
