#pragma once

#include <string_view>

#include "platform/DriveTable.h"

namespace platform {

/// Gives `to` the owner and group (where the system allows it) and the mode of `from`. Links are followed.
bool copyModeAndOwner(const DriveTable& drives, std::string_view from, std::string_view to);

/// Gives `to` the times of `from`.
bool copyTimes(const DriveTable& drives, std::string_view from, std::string_view to);

}  // namespace platform
