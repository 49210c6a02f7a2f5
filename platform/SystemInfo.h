#pragma once

#include <optional>
#include <string>

namespace platform {

struct SystemVersion {
  int platformId;  ///< 1 the 9x family, 2 the NT family
  int major;
  int minor;
};

/// What the system says of itself: NT family, major 10, unless PAKRUNE_WINVER ("2.10.0") says otherwise;
/// nullopt (the query failed) when that variable holds anything else.
std::optional<SystemVersion> systemVersion();

/// Who may change owners (effective uid 0 or CAP_CHOWN), unless PAKRUNE_ADMIN (0 or 1) says otherwise.
bool isUserAnAdmin();

}  // namespace platform
