#pragma once

#include <functional>

#include "runtime/Services.h"

namespace runtime {

/// Proves on a file in the program's folder that chmod works; what goes wrong is a line in the log.
/// `showNotice` is called when the modes did not stick and "FirstRun" is "1". When the file cannot be
/// created: one log line, nothing else.
void RunPermissionTest(const Services& services, const std::function<void()>& showNotice);

}  // namespace runtime
