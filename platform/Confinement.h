#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/DriveTable.h"

namespace platform {

/// What keeps a tool from changing what it has no business with; docs/security.md says what each is good for.
struct ConfinementLayers {
  bool mounts = false;     ///< everything else is mounted read-only
  bool processes = false;  ///< what the tool has started ends with it, and it sees no other process
  bool landlock = false;   ///< rules for names and contents
  bool calls = false;      ///< no sockets

  bool operator==(const ConfinementLayers&) const = default;
};

/// What a run of a tool may change.
struct MayChange {
  /// Windows form, links are followed; they exist. Nothing can be renamed or linked from one into another
  /// one, unless that lies in the first.
  std::vector<std::string> folders;
  /// The run sees or sets owners and groups other than the user's own, whom he can have no layer of mounts
  /// and processes beside: in such a one all others are nobody.
  bool foreignOwners = false;
};

/// Composes the words with which the launcher (tools/confine) starts a tool.
class Confinement {
 public:
  /// Tries what the system offers to the launcher at this host path: where that is missing, nothing. Takes a
  /// few milliseconds and starts processes.
  explicit Confinement(std::string launcher);

  const ConfinementLayers& offered() const { return offered_; }
  /// What is not offered, in words for a person; empty when nothing is missing.
  std::string missing() const;

  /// What stands before the tool's own argv[0], the launcher's path first; `program` is the tool's. Empty:
  /// the tool is started directly. nullopt: one of the folders names nothing here. With `reporting` the
  /// launcher is told that reportDescriptor (platform/ConfinementWords.h) is open.
  std::optional<std::vector<std::string>> wordsBefore(const std::string& program, const MayChange& mayChange,
                                                      const DriveTable& drives, bool reporting) const;

 private:
  std::string launcher_;
  ConfinementLayers offered_;
};

}  // namespace platform
