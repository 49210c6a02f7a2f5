#pragma once

#include <sys/types.h>

#include <vector>

namespace platform {

/// The processes that the system shows at this moment.
std::vector<pid_t> processList();

}  // namespace platform
