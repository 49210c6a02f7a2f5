#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "archive/ExtractGuard.h"
#include "runtime/Services.h"

namespace archive {

/// ar (binutils 2.40) finds the first member of a name only, and none by a name with a "/". Where an ipk
/// holds such members, all is to be unpacked: the folders that ar needs for that, each behind the one it lies
/// in.
std::optional<std::vector<std::string>> unpackedWholly(const std::vector<GuardedMember>& members);

/// Moves what ar has unpacked into the output folder. A rename puts a file in the place of a link, never
/// behind it; links that lead out are not on the way of a member that may be extracted.
class PackageMove {
 public:
  /// Windows paths; `outFolder` ends in a backslash.
  PackageMove(const runtime::Services& services, std::string from, std::string outFolder)
      : services_(services), from_(std::move(from)), outFolder_(std::move(outFolder)) {}

  /// False: something could not be put into its place, which the log tells, or a stop was asked for.
  bool all() const { return moveBelow("", nullptr); }
  /// Only these and what lies below them.
  bool some(const std::vector<std::string>& members) const;

 private:
  bool moveBelow(const std::string& folder, const Names* wanted) const;
  bool moveFile(const std::string& name) const;

  const runtime::Services& services_;
  std::string from_;
  std::string outFolder_;
};

}  // namespace archive
