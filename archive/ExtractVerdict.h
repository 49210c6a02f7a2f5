#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "archive/ExtractGuard.h"

namespace archive {

/// What the guard makes of the members that were asked for.
struct Verdict {
  std::vector<RefusedMember> refused;
  std::vector<std::string> kept;
  std::map<std::string, std::size_t, std::less<>>
      below;                            ///< what was asked for, and how many members it brings along
  std::vector<std::string> outFolders;  ///< of those kept, names of the output folder itself
  std::vector<std::string> absolute;    ///< of those kept
  Names likeRemarks;                    ///< of those kept, what reads as a remark of tar
};

/// Judges what lies at or below the names of `asked`; `members` in the order of the archive.
Verdict judgeAsked(ExtractGuard& guard, const std::vector<GuardedMember>& members, const Names& asked);

/// The first folder on a name's way, or the name itself, that is among `names`; nullptr: none is.
const std::string* coverOf(const Names& names, std::string_view name);

/// The labels of volumes (GNU tar 1.34), which a listing of names has as well.
std::set<std::string> volumeLabels(std::string_view verboseListing);

/// Takes for each member the reading of its line that the plain listing has, line by line, and returns the
/// names for which the one with attributes has no line.
std::vector<std::string> settleReadings(std::vector<GuardedMember>& members,
                                        const std::vector<std::string>& names);

}  // namespace archive
