#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/DriveTable.h"

namespace platform {

/// The host path of the first executable file that has one of the names in one of the folders (Windows form):
/// folder by folder, in each the names in order. Without one, the first such file that cannot be executed, so
/// that its start says why. A folder that names nothing here (".") is passed over.
std::optional<std::string> findProgramIn(const DriveTable& drives, const std::vector<std::string>& folders,
                                         const std::vector<std::string>& names);

}  // namespace platform
