#pragma once

#include <string>
#include <string_view>

#include "platform/DriveTable.h"

namespace platform {

/// Moves an entry (Windows path) to the trash of the desktop, from where file managers restore it: the user's
/// own one, or on another file system the one at its top. A link goes itself, wherever it leads. Nothing is
/// copied, and where there is no trash nothing goes. Empty, or in words why the entry is still there.
std::string moveToTrash(const DriveTable& drives, std::string_view path);

}  // namespace platform
