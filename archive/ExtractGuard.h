#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"

namespace archive {

/// Looked through by parts of longer names.
using Names = std::set<std::string, std::less<>>;

/// One member as the guard sees it: inner forms, "/" between components.
struct GuardedMember {
  std::string name;
  /// As a verbose listing prints it: 'd' of a folder, 'l' and 'h' of links, '-' where it is not known.
  char type = '-';
  std::string target = {};  ///< where a link leads; else empty
  /// What the line says as well, where a name or a target holds what stands between the two.
  std::vector<GuardedMember> otherReadings = {};

  bool isFolder() const { return type == 'd' || name.ends_with('/'); }  ///< a header may lack the slash
};

/// Why a member is left out.
enum class LeftOut {
  Outside,      ///< ".."
  OtherHome,    ///< below ../usr8, which is another home on the terminal
  BelowLink,    ///< below a link that leads out of the output folder, or that tar makes at its very end
  HardLinkOut,  ///< a hard link to something outside
  Unlisted,     ///< the listing with attributes lacks it
};

struct RefusedMember {
  std::string member;
  LeftOut reason;
  std::string exclude;  ///< the part of its name that tar is told to leave out, with all below
};

/// Decides which members could be written outside the output folder. GNU tar 1.34 itself refuses "..", and
/// makes links that are absolute or hold ".." only when all else is done; here it is known beforehand, told
/// in words, and links that already stand in the output folder count too.
class ExtractGuard {
 public:
  /// The output folder as a Windows path; it need not exist yet.
  ExtractGuard(const platform::DriveTable& drives, std::string_view outFolder);

  /// To be called in the order of the archive: a link that may be extracted counts for the members behind it.
  /// Empty: it may be extracted. Where one reading of a line is refused, so are all.
  std::vector<RefusedMember> judge(const GuardedMember& member);
  /// Whether a member that may be extracted is the output folder itself.
  bool isOutFolder(const GuardedMember& member);

 private:
  /// Where a folder may really be, in plain forms; nullopt: outside, or nowhere before tar's end.
  using Places = std::optional<std::vector<std::string>>;
  /// What the archive's links make of a name.
  struct Made {
    enum Kind { Open, Last, Closed } kind = Open;
    std::vector<std::string> targets = {};  ///< of those that are Open: plain forms, from the output folder
  };
  /// What stands on disk: outside nullopt, else where a name leads, which is itself unless it is a link.
  using Way = std::optional<std::string>;

  std::optional<RefusedMember> judgeReading(const GuardedMember& member);
  std::optional<std::string> closedAt(std::string_view name);
  bool hardLinkLeadsOut(const GuardedMember& member);
  bool takesPlaceOfLink(const GuardedMember& member);
  void note(const GuardedMember& member);
  void noteAt(const std::string& path, const std::string& parent, const GuardedMember& member);
  static void noteLink(Made& made, const std::string& parent, const GuardedMember& member);
  Places walk(const std::string& folder, int links = 0);
  Places step(const std::vector<std::string>& from, std::string_view component, int links);
  const Way& way(const std::string& path);
  Way lookUp(const std::string& path) const;

  std::string host_;  // of the output folder, without a trailing "/"
  std::string real_;  // the same with links followed; empty while it does not exist
  std::map<std::string, Made, std::less<>> made_;
  std::map<std::string, Places, std::less<>> walked_;  // valid until a link gets in or out of the way
  std::map<std::string, Way, std::less<>> ways_;       // whatever has been looked up on disk
};

/// The members of a tar's verbose listing.
std::vector<GuardedMember> membersOf(std::string_view verboseListing);

/// Whether a folder holds a link anywhere below it; a folder too large to look through counts as one that
/// does.
bool mayHoldLinks(const platform::DriveTable& drives, std::string_view folder);

}  // namespace archive
