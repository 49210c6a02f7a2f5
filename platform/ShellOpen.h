#pragma once

#include <string_view>

#include "platform/DriveTable.h"
#include "platform/Environment.h"

namespace platform {

/// Opens a file or folder with the desktop's default handler (xdg-open, found in PATH), which is not waited
/// for and outlives the program. It gets the user's own environment, not the tools'. False when the path
/// names nothing or no handler can be started. `workingFolder` (Windows form) may be empty.
bool shellOpen(const DriveTable& drives, const Environment& environment, std::string_view windowsPath,
               std::string_view workingFolder);

}  // namespace platform
