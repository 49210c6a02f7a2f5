#pragma once

#include "runtime/UserInterface.h"

namespace runtime {

/// Shows in a box what was logged since `place` (Log::size() of then), where the log pane alone says what a
/// run was short of. Nothing logged: no box.
void showLogged(UserInterface& user, const Log& log, std::size_t place);

}  // namespace runtime
