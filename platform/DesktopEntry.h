#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The text of the desktop entry (a *.desktop file) of that name, as the user's and the system's folders hold
/// it; empty where none does.
std::string desktopEntry(std::string_view name);

/// The command that a desktop entry gives for a file (host path), the program first. Empty for a program that
/// needs a terminal and for a text that is no entry of a program.
std::vector<std::string> commandFor(std::string_view entry, const std::string& hostPath);

}  // namespace platform
