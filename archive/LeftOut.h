#pragma once

#include <vector>

#include "archive/ExtractGuard.h"
#include "runtime/UserInterface.h"

namespace archive {

/// Logs which members are left out and why: the first 20, and the terminal's other home once.
void logLeftOut(runtime::Log& log, const std::vector<RefusedMember>& refused);

/// Logs which members are extracted below the output folder though their names are absolute: the first 20.
void logAbsolute(runtime::Log& log, const std::vector<std::string>& members);

}  // namespace archive
