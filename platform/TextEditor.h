#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"
#include "platform/Environment.h"
#include "platform/Files.h"

namespace platform {

/// Why a file (Windows path) is none for a text editor, in words: it is no file that can be read, or its
/// first bytes are no text's. Empty for a text.
std::string noTextReason(const Files& files, std::string_view path);

/// Opens files (Windows paths) in the desktop's default program for plain text, of whatever type they are
/// themselves: a page or a script must not be shown or run. Where the desktop names none that opens a window
/// of its own, each is opened as its type says. Nothing is waited for but the desktop's answer. False: no
/// program could be started.
bool editTexts(const DriveTable& drives, const Environment& environment,
               const std::vector<std::string>& paths);

}  // namespace platform
