#pragma once

#include <chrono>

namespace kt500sim {

using Moment = std::chrono::steady_clock::time_point;

/// Waits for what poll(2) tells of a descriptor; -1: for nothing. False when the moment came first, or the
/// simulator is to end.
bool waitFor(int descriptor, short what, Moment until);

bool isToEnd();  ///< by a signal

}  // namespace kt500sim
