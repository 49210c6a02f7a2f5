#pragma once

#include <string>
#include <vector>

#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace perms {

/// Whose files are to become somebody's: the selection as it was at the click.
struct OwnershipItems {
  std::vector<std::string> paths;  ///< full Windows paths; none: the whole current folder
  std::string folder;              ///< the current folder, trailing backslash

  /// For the log: "3 files in C:\pkg\", or "C:\pkg\*".
  std::string target() const;
};

/// What is set, and in which words.
struct Ownership {
  std::string command;      ///< tool and account: "chown.exe -R usr5 "
  std::string name;         ///< for the log: "Owner(usr5)"
  std::string cannotStart;  ///< the message when the tool could not be started
};
Ownership ownerTo(const std::string& account);
Ownership groupToKT500();

/// Sets owner or group of the items with all below them. Links among the items are left out and named in the
/// log, since the tools would follow them; below folders none is followed. Every failure is told, and each
/// run ends in one line of the log.
class OwnershipJob {
 public:
  OwnershipJob(const runtime::Services& services, Ownership ownership, OwnershipItems items);
  runtime::JobEnd run();

 private:
  std::vector<std::string> batches() const;
  runtime::JobEnd runBatch(const std::string& batch) const;

  runtime::Services services_;
  Ownership ownership_;
  OwnershipItems items_;
};

}  // namespace perms
