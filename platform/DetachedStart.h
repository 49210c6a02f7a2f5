#pragma once

#include "platform/ChildProcess.h"

namespace platform {

/// Starts a program that is not waited for and outlives this one: in a session of its own, nobody's child,
/// its standard descriptors lead to /dev/null. 0 once it runs, else the errno of what failed.
int startDetached(const ChildSettings& settings);

/// "NAME=value" of the environment that this program was itself started with.
std::vector<std::string> usersEnvironment();

}  // namespace platform
