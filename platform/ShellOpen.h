#pragma once

#include <string_view>

#include "platform/DriveTable.h"
#include "platform/Environment.h"

namespace platform {

/// Opens a file or folder with the desktop's default handler (xdg-open, found in PATH), which is not waited
/// for and outlives the program. It gets the user's own environment, not the tools'. A help file (".chm" in
/// any case, and behind it maybe a page: "C:\Pakrune.chm::/packing.html") is opened by hh.exe of `viewers`
/// instead. False when the path names nothing or what opens it cannot be started. `workingFolder` and
/// `viewers` (Windows form) may be empty; without the latter a help file is a file like any other.
bool shellOpen(const DriveTable& drives, const Environment& environment, std::string_view windowsPath,
               std::string_view workingFolder, std::string_view viewers = {});

}  // namespace platform
