#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/terminal_accounts.h"

namespace kt500sim {

struct Request {
  std::string name;  ///< bytes; one component of a path
  std::uint64_t size = 0;
  mode_t mode = 0;
  std::string owner;
  std::string group;
};

enum class RequestState { Incomplete, Bad, Complete };

struct ReadRequest {
  RequestState state = RequestState::Incomplete;
  Request request;     ///< when complete
  std::string reason;  ///< when bad
};

/// Reads what has arrived so far: "DLD:" and the name, size, mode, owner, group, each ended by a NUL byte.
/// Strict: exactly these fields, nothing behind them, and never more than a few hundred bytes.
ReadRequest readRequest(std::string_view bytes, const TerminalAccounts& accounts);

constexpr std::size_t longestRequest = 512;  ///< bytes; more than the longest right one

}  // namespace kt500sim
