#pragma once

#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Stop.h"

namespace platform {

/// The newest time of change among some host paths and all below them, links not followed. A folder's own
/// time counts only where there is nothing but folders: it tells when a name came or went, and changes with
/// whatever is written beside its files. `leaveOut` gets a host path. nullopt: there is nothing, or a stop.
std::optional<std::time_t> newestTime(const std::vector<std::string>& paths, const Stop& stop,
                                      const std::function<bool(const std::string& path)>& leaveOut);

}  // namespace platform
