#pragma once

#include <string_view>

#include "platform/DriveTable.h"

namespace platform::desktop {

/// Puts the files of a file-drop block on the desktop's clipboard, as file managers paste them: text/uri-list
/// and x-special/gnome-copied-files. The block: a header whose first 32-bit field (lowest byte first) is the
/// offset of the file list; there Windows paths, each ended by a NUL, and one more NUL. True when the
/// clipboard then holds the list; false also when a path names nothing here.
bool offerFiles(const DriveTable& drives, std::string_view block);

}  // namespace platform::desktop
