#pragma once

#include <optional>
#include <string>

#include "archive/PackCommand.h"

namespace shell {

/// What may be said before -qpack instead of the archive dialog's defaults, as typed.
struct PackOptions {
  std::optional<std::string> output;  ///< Windows path of the archive
  std::optional<std::string> owner;   ///< an account of the terminal, a number, or "keep"
  std::optional<std::string> group;   ///< a number, or "keep"
  std::optional<std::string> time;    ///< every member's, seconds since 1970
  std::optional<std::string> umask;   ///< bits that are taken out of every member's mode, octal

  bool any() const { return output || owner || group || time || umask; }
};

/// Puts them into settings. `sourceDateEpoch`: the environment's SOURCE_DATE_EPOCH, or empty; it is the time
/// where none is said. The problem in words, or empty.
std::string applyOptions(const PackOptions& options, const std::string& sourceDateEpoch,
                         archive::PackSettings& settings);

}  // namespace shell
