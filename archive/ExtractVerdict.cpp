#include "archive/ExtractVerdict.h"

#include <algorithm>
#include <iterator>

#include "archive/ListingLine.h"
#include "platform/HeldName.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

const std::string* coverOfAny(const Names& asked, const GuardedMember& member) {
  const std::string* cover = coverOf(asked, member.name);
  for (const GuardedMember& reading : member.otherReadings)
    if (cover == nullptr) cover = coverOf(asked, reading.name);
  return cover;
}

void keep(const GuardedMember& member, ExtractGuard& guard, Verdict& verdict) {
  verdict.kept.push_back(member.name);
  if (guard.isOutFolder(member)) verdict.outFolders.push_back(member.name);
  if (member.name.starts_with('/')) verdict.absolute.push_back(member.name);
  if (isRemark(platform::releaseName(member.name))) verdict.likeRemarks.insert(member.name);
}

/// Where in the archive a name stands, by each reading of each line.
using Lines = std::map<std::string_view, std::vector<std::size_t>>;

Lines linesOf(const std::vector<GuardedMember>& members) {
  Lines lines;
  for (std::size_t i = 0; i < members.size(); ++i) {
    lines[members[i].name].push_back(i);
    for (const GuardedMember& reading : members[i].otherReadings) lines[reading.name].push_back(i);
  }
  return lines;
}

void takeReading(GuardedMember& member, std::string_view name) {
  const auto same = [name](const GuardedMember& reading) { return reading.name == name; };
  const auto found = std::find_if(member.otherReadings.begin(), member.otherReadings.end(), same);
  if (found != member.otherReadings.end()) member = GuardedMember(*found);
  member.otherReadings.clear();
}

}  // namespace

const std::string* coverOf(const Names& names, std::string_view name) {
  if (names.empty()) return nullptr;
  name = runtime::withoutSlash(name);
  for (std::size_t slash = name.find('/', 1);; slash = name.find('/', slash + 1)) {
    const auto found = names.find(name.substr(0, slash));
    if (found != names.end()) return &*found;
    if (slash == name.npos) return nullptr;
  }
}

Verdict judgeAsked(ExtractGuard& guard, const std::vector<GuardedMember>& members, const Names& asked) {
  Verdict verdict;
  for (const GuardedMember& member : members) {
    const std::string* const cover = coverOfAny(asked, member);
    if (cover == nullptr) continue;
    auto refused = guard.judge(member);
    std::move(refused.begin(), refused.end(), std::back_inserter(verdict.refused));
    if (!refused.empty()) continue;
    ++verdict.below[*cover];
    keep(member, guard, verdict);
  }
  return verdict;
}

std::set<std::string> volumeLabels(std::string_view verboseListing) {
  constexpr std::string_view suffix = "--Volume Header--";
  std::set<std::string> labels;
  for (const std::string_view line : completeLines(verboseListing)) {
    if (!line.starts_with('V') || !line.ends_with(suffix)) continue;
    const std::string asFile = '-' + std::string(line.substr(1, line.size() - 1 - suffix.size()));
    if (const auto entry = parseListingLine(asFile)) labels.insert(heldName(entry->path));
  }
  return labels;
}

std::vector<std::string> settleReadings(std::vector<GuardedMember>& members,
                                        const std::vector<std::string>& names) {
  const std::vector<GuardedMember> asListed = members;
  const Lines lines = linesOf(asListed);
  std::vector<std::string> lacking;
  std::size_t next = 0;
  for (const std::string& name : names) {
    const auto known = lines.find(name);
    const auto at = known == lines.end() ? std::vector<std::size_t>::const_iterator()
                                         : std::lower_bound(known->second.begin(), known->second.end(), next);
    if (known == lines.end() || at == known->second.end()) {
      lacking.push_back(name);
      continue;
    }
    takeReading(members[*at], name);
    next = *at + 1;
  }
  return lacking;
}

}  // namespace archive
