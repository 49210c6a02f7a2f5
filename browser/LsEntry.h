#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace browser {

/// What a line of `ls -lnd` says of an entry, beside what the search of the folder has told.
struct LsEntry {
  std::string mode;    ///< the first 10 characters; of a complaint, of its text; empty until it was asked for
  bool owned = false;  ///< the two numbers are known
  std::uint32_t owner = 0;
  std::uint32_t group = 0;
  std::string target;  ///< held form; where a link leads to

  bool operator==(const LsEntry&) const = default;
};

/// What `ls` would say of an entry, asked of the system; without a mode where nobody may ask. nullopt: it is
/// not there.
std::optional<LsEntry> lsEntryOf(const std::string& hostPath);

}  // namespace browser
