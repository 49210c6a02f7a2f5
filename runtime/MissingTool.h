#pragma once

#include <string>

#include "runtime/Services.h"

namespace runtime {

/// The box about a tool that is not in the tools' folder.
void tellToolMissing(UserInterface& user, const std::string& tool, const std::string& title);

/// Whether a tool is there; where it is not, the box has said so.
bool toolFound(const Services& services, const std::string& tool, const std::string& title);

}  // namespace runtime
