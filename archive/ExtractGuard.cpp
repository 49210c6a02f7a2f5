#include "archive/ExtractGuard.h"

#include <sys/stat.h>

#include <filesystem>
#include <iterator>

#include "archive/ListingLine.h"
#include "platform/HeldName.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

namespace fs = std::filesystem;

using runtime::withoutSlash;

constexpr int mostLookedAt = 20'000;  ///< entries; looking takes some 50 ms then

/// Where a ".." among the components ends; npos without one.
std::size_t endOfDotDot(std::string_view name) {
  for (std::size_t begin = 0; begin <= name.size();) {
    const std::size_t end = std::min(name.find('/', begin), name.size());
    if (name.substr(begin, end - begin) == "..") return end;
    begin = end + 1;
  }
  return std::string_view::npos;
}

/// "./a//./b/" names what "a/b" names.
std::string plainForm(std::string_view name) {
  std::string plain;
  while (!name.empty()) {
    const std::string_view component = name.substr(0, name.find('/'));
    name.remove_prefix(std::min(component.size() + 1, name.size()));
    if (component.empty() || component == ".") continue;
    if (!plain.empty()) plain += '/';
    plain += component;
  }
  return plain;
}

bool leadsUp(std::string_view name) {
  return name.starts_with('/') || endOfDotDot(name) != std::string_view::npos;
}

/// How much of `name` reaches through its first `count` plain components.
std::string_view firstComponents(std::string_view name, std::size_t count) {
  std::size_t end = 0;
  while (count > 0 && end < name.size()) {
    const std::size_t begin = name.find_first_not_of('/', end);
    if (begin == name.npos) return name;
    end = std::min(name.find('/', begin), name.size());
    if (name.substr(begin, end - begin) != ".") --count;
  }
  return name.substr(0, end);
}

std::string withoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

ExtractGuard::ExtractGuard(const platform::DriveTable& drives, std::string_view outFolder)
    : host_(withoutTrailingSlashes(drives.toHost(outFolder).value_or("/"))) {
  std::error_code failed;
  real_ = fs::canonical(host_, failed).string();
}

void ExtractGuard::noteLink(const GuardedMember& member) {
  if (member.isLink) links_.insert(plainForm(member.name));
  for (const GuardedMember& reading : member.otherReadings) noteLink(reading);
}

std::vector<RefusedMember> ExtractGuard::judge(const GuardedMember& member) {
  std::vector<RefusedMember> refused;
  std::vector<const GuardedMember*> passed;
  const auto judgeOne = [&](const GuardedMember& reading) {
    if (auto verdict = judgeReading(reading))
      refused.push_back(std::move(*verdict));
    else
      passed.push_back(&reading);
  };
  judgeOne(member);
  for (const GuardedMember& reading : member.otherReadings) judgeOne(reading);
  if (refused.empty()) return refused;
  const LeftOut reason = refused.front().reason;
  for (const GuardedMember* const reading : passed)
    refused.push_back({reading->name, reason, std::string(withoutSlash(reading->name))});
  return refused;
}

std::optional<RefusedMember> ExtractGuard::judgeReading(const GuardedMember& member) {
  const std::string_view name = withoutSlash(member.name);
  const auto refused = [&](LeftOut reason, std::string_view exclude) {
    return RefusedMember{member.name, reason, std::string(exclude)};
  };
  if (name == "../usr8" || name.starts_with("../usr8/")) return refused(LeftOut::OtherHome, "../usr8");
  if (name.starts_with('/')) return refused(LeftOut::Outside, firstComponents(name, 1));
  const std::size_t dots = endOfDotDot(name);
  if (dots != name.npos) return refused(LeftOut::Outside, name.substr(0, dots));
  if (const auto closed = closedAt(name)) return refused(LeftOut::BelowLink, *closed);
  // A folder would take the place of a link whose members are all left out.
  if (member.name.ends_with('/') && way(plainForm(name)) == Way::Outside)
    return refused(LeftOut::BelowLink, name);
  if (member.hardTarget.empty()) return std::nullopt;
  const bool out = leadsUp(member.hardTarget) || closedAt(member.hardTarget);
  return out ? std::optional(refused(LeftOut::HardLinkOut, name)) : std::nullopt;
}

/// The part of a name that goes one component below a folder that is closed; nullopt when none on its way is.
std::optional<std::string> ExtractGuard::closedAt(std::string_view name) {
  const std::string plain = plainForm(name);
  std::size_t depth = 1;
  for (std::size_t slash = plain.find('/'); slash != plain.npos; slash = plain.find('/', slash + 1)) {
    const std::string folder = plain.substr(0, slash);
    ++depth;
    if (links_.find(folder) != links_.end() || way(folder) == Way::Outside)
      return std::string(firstComponents(name, depth));
  }
  return std::nullopt;
}

ExtractGuard::Way ExtractGuard::way(const std::string& folder) {
  const auto known = ways_.find(folder);
  if (known != ways_.end()) return known->second;
  const std::size_t slash = folder.rfind('/');
  const Way above = slash == std::string::npos ? (real_.empty() ? Way::Missing : Way::Inside)
                                               : way(folder.substr(0, slash));
  const Way found = above == Way::Inside ? lookUp(folder) : above;
  ways_.emplace(folder, found);
  return found;
}

ExtractGuard::Way ExtractGuard::lookUp(const std::string& folder) const {
  const std::string path = host_ + '/' + platform::releaseName(folder);
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return Way::Missing;
  if (!S_ISLNK(status.st_mode)) return Way::Inside;
  return leadsOut(path) ? Way::Outside : Way::Inside;
}

/// A link whose end is not there cannot be judged and counts as leading out.
bool ExtractGuard::leadsOut(const std::string& hostPath) const {
  std::error_code failed;
  const std::string end = fs::canonical(hostPath, failed).string();
  if (failed) return true;
  return end != real_ && !end.starts_with(real_ == "/" ? real_ : real_ + '/');
}

std::vector<GuardedMember> membersOf(std::string_view verboseListing) {
  std::vector<GuardedMember> members;
  for (const std::string_view line : completeLines(verboseListing)) {
    const auto entry = parseListingLine(line);
    if (!entry) continue;
    const bool isHard = entry->mode.front() == 'h';
    std::vector<GuardedMember> readings;
    for (const EntryPath& path : linkReadings(*entry))
      readings.push_back(
          {heldName(path.name), entry->isLink(), isHard && path.target ? heldName(*path.target) : ""});
    GuardedMember member = std::move(readings.front());
    member.otherReadings.assign(std::make_move_iterator(readings.begin() + 1),
                                std::make_move_iterator(readings.end()));
    members.push_back(std::move(member));
  }
  return members;
}

bool mayHoldLinks(const platform::DriveTable& drives, std::string_view folder) {
  std::error_code failed;
  int looked = 0;
  fs::recursive_directory_iterator at(drives.toHost(folder).value_or("/"), failed);
  for (; !failed && at != fs::recursive_directory_iterator(); at.increment(failed))
    if (at->is_symlink(failed) || ++looked > mostLookedAt) return true;
  return static_cast<bool>(failed);
}

}  // namespace archive
