#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"

namespace archive {

/// One member as the guard sees it: inner forms, "/" between components.
struct GuardedMember {
  std::string name;
  bool isLink = false;     ///< symbolic or hard
  std::string hardTarget;  ///< where a hard link leads; else empty
  /// What the line says as well, where a name or a target holds what stands between the two.
  std::vector<GuardedMember> otherReadings = {};
};

/// Why a member is left out.
enum class LeftOut {
  Outside,    ///< "..", an absolute name
  OtherHome,  ///< below ../usr8, which is another home on the terminal
  BelowLink,  ///< below a link that stands in the output folder and leads out of it, or below a link that the
              ///< archive brings along
  HardLinkOut,  ///< a hard link to something outside
};

struct RefusedMember {
  std::string member;
  LeftOut reason;
  std::string exclude;  ///< the part of its name that tar is told to leave out, with all below
};

/// Decides which members could be written outside the output folder. tar itself refuses ".." and what is
/// written through links of the archive; here it is known beforehand, told in words, and links that already
/// stand in the output folder count too.
class ExtractGuard {
 public:
  /// The output folder as a Windows path; it need not exist yet.
  ExtractGuard(const platform::DriveTable& drives, std::string_view outFolder);

  /// Links of the archive must be known before anything below them is judged.
  void noteLink(const GuardedMember& member);
  /// Empty: it may be extracted. Where one reading of a line is refused, so are all.
  std::vector<RefusedMember> judge(const GuardedMember& member);

 private:
  std::optional<RefusedMember> judgeReading(const GuardedMember& member);
  enum class Way { Inside, Missing, Outside };
  Way way(const std::string& folder);
  Way lookUp(const std::string& folder) const;
  std::optional<std::string> closedAt(std::string_view name);
  bool leadsOut(const std::string& hostPath) const;

  std::string host_;  // of the output folder, without a trailing "/"
  std::string real_;  // the same with links followed; empty while it does not exist
  std::set<std::string, std::less<>> links_;
  std::map<std::string, Way, std::less<>> ways_;  // folders that have been looked up
};

/// The members of a tar's verbose listing.
std::vector<GuardedMember> membersOf(std::string_view verboseListing);

/// Whether a folder holds a link anywhere below it; a folder too large to look through counts as one that
/// does.
bool mayHoldLinks(const platform::DriveTable& drives, std::string_view folder);

}  // namespace archive
