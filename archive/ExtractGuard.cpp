#include "archive/ExtractGuard.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <iterator>

#include "archive/ListingLine.h"
#include "platform/HeldName.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

namespace fs = std::filesystem;

using runtime::withoutSlash;

constexpr int mostLookedAt = 20'000;   ///< entries; looking takes some 50 ms then
constexpr int mostLinks = 40;          ///< on one way, as the system has it
constexpr std::size_t mostPlaces = 8;  ///< of one folder
/// The system refuses longer ones; a byte of theirs is held by three.
constexpr std::size_t longestPath = 3 * PATH_MAX;

/// Where a ".." among the components ends; npos without one.
std::size_t endOfDotDot(std::string_view name) {
  for (std::size_t begin = 0; begin <= name.size();) {
    const std::size_t end = std::min(name.find('/', begin), name.size());
    if (name.substr(begin, end - begin) == "..") return end;
    begin = end + 1;
  }
  return std::string_view::npos;
}

/// "/./a//./b/" names what "a/b" names below the output folder.
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

std::string joined(const std::string& folder, std::string_view name) {
  return folder.empty() || name.empty() ? folder + std::string(name) : folder + '/' + std::string(name);
}

std::string parentOf(const std::string& plain) {
  const std::size_t slash = plain.rfind('/');
  return slash == plain.npos ? "" : plain.substr(0, slash);
}

std::string lastOf(const std::string& plain) { return plain.substr(plain.rfind('/') + 1); }

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
  if (refused.empty())
    for (const GuardedMember* const reading : passed) note(*reading);
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
  const std::size_t dots = endOfDotDot(name);
  if (dots != name.npos) return refused(LeftOut::Outside, name.substr(0, dots));
  if (const auto closed = closedAt(name)) return refused(LeftOut::BelowLink, *closed);
  if (takesPlaceOfLink(member)) return refused(LeftOut::BelowLink, name);
  if (hardLinkLeadsOut(member)) return refused(LeftOut::HardLinkOut, name);
  return std::nullopt;
}

/// The part of a name that goes one component below a folder that is closed; nullopt when none on its way is.
std::optional<std::string> ExtractGuard::closedAt(std::string_view name) {
  const std::string plain = plainForm(name);
  if (walk(parentOf(plain))) return std::nullopt;
  std::size_t depth = 2;
  for (std::size_t slash = plain.find('/'); slash != plain.npos && walk(plain.substr(0, slash));
       slash = plain.find('/', slash + 1))
    ++depth;
  return std::string(firstComponents(name, depth));
}

/// tar takes a leading "/" off, and whatever ends in "../".
bool ExtractGuard::hardLinkLeadsOut(const GuardedMember& member) {
  if (member.type != 'h') return false;
  return endOfDotDot(member.target) != member.target.npos || !walk(parentOf(plainForm(member.target)));
}

/// A folder would take the place of a link whose members are all left out.
bool ExtractGuard::takesPlaceOfLink(const GuardedMember& member) {
  const std::string plain = plainForm(member.name);
  if (!member.isFolder() || plain.empty()) return false;
  const Places parents = walk(parentOf(plain));
  for (const std::string& parent : parents.value())
    if (!way(joined(parent, lastOf(plain)))) return true;
  return false;
}

bool ExtractGuard::isOutFolder(const GuardedMember& member) {
  const std::string plain = plainForm(member.name);
  if (plain.empty()) return true;
  if (!withoutTrailingSlashes(member.name).ends_with("/.")) return false;
  const Places places = walk(plain);
  return places && std::find(places->begin(), places->end(), "") != places->end();
}

void ExtractGuard::note(const GuardedMember& member) {
  const std::string plain = plainForm(member.name);
  const bool counts = member.type == 'l' || member.type == 'h' || member.isFolder();
  const bool followsLink = withoutTrailingSlashes(member.name).ends_with("/.");
  if (!counts || followsLink || plain.empty() || plain.size() > longestPath) return;
  const Places parents = walk(parentOf(plain));
  for (const std::string& parent : parents.value()) noteAt(joined(parent, lastOf(plain)), parent, member);
}

/// A folder takes the place of a link of the archive. It need not be extracted (the user may refuse to), so a
/// link that would then be followed to something closed stays closed.
void ExtractGuard::noteAt(const std::string& path, const std::string& parent, const GuardedMember& member) {
  if (member.isFolder()) {
    const auto known = made_.find(path);
    if (known == made_.end() || known->second.kind == Made::Closed) return;
    for (const std::string& target : known->second.targets)
      if (!walk(target)) return;
    made_.erase(known);
  } else {
    noteLink(made_[path], parent, member);
  }
  if (ways_.count(path) > 0) walked_.clear();
}

/// A hard link to a symbolic one is such a link too.
void ExtractGuard::noteLink(Made& made, const std::string& parent, const GuardedMember& member) {
  const std::string& target = member.target;
  if (member.type == 'h' || made.targets.size() == mostPlaces)
    made.kind = Made::Closed;
  else if (target.empty() || target.starts_with('/') || endOfDotDot(target) != target.npos)
    made.kind = std::max(made.kind, Made::Last);
  else if (const std::string end = joined(parent, plainForm(target));
           std::find(made.targets.begin(), made.targets.end(), end) == made.targets.end())
    made.targets.push_back(end);
}

/// Each part of the way is walked once; a way that comes back to itself is closed.
ExtractGuard::Places ExtractGuard::walk(const std::string& folder, int links) {
  Places at = std::vector<std::string>{""};
  if (folder.size() > longestPath || links > mostLinks) return links > mostLinks ? std::nullopt : at;
  std::size_t done = folder.size();
  while (done > 0) {
    const auto known = walked_.find(std::string_view(folder).substr(0, done));
    if (known != walked_.end()) {
      at = known->second;
      break;
    }
    const std::size_t slash = folder.rfind('/', done - 1);
    done = slash == folder.npos ? 0 : slash;
  }
  while (at && done < folder.size()) {
    const std::size_t begin = done == 0 ? 0 : done + 1;
    done = std::min(folder.find('/', begin), folder.size());
    const std::string part = folder.substr(0, done);
    walked_[part] = std::nullopt;
    at = step(*at, std::string_view(folder).substr(begin, done - begin), links);
    walked_[part] = at;
  }
  return at;
}

ExtractGuard::Places ExtractGuard::step(const std::vector<std::string>& from, std::string_view component,
                                        int links) {
  std::vector<std::string> places;
  for (const std::string& folder : from) {
    const std::string path = joined(folder, component);
    const Way& stands = way(path);
    if (!stands) return std::nullopt;
    places.push_back(*stands);
    const auto made = made_.find(path);
    if (made == made_.end()) continue;
    if (made->second.kind != Made::Open) return std::nullopt;
    for (const std::string& target : made->second.targets) {
      const Places there = walk(target, links + 1);
      if (!there) return std::nullopt;
      places.insert(places.end(), there->begin(), there->end());
    }
  }
  std::sort(places.begin(), places.end());
  places.erase(std::unique(places.begin(), places.end()), places.end());
  if (places.size() > mostPlaces) return std::nullopt;
  return places;
}

const ExtractGuard::Way& ExtractGuard::way(const std::string& path) {
  const auto known = ways_.find(path);
  return known != ways_.end() ? known->second : ways_.emplace(path, lookUp(path)).first->second;
}

/// A link whose end is not there cannot be judged and counts as leading out.
ExtractGuard::Way ExtractGuard::lookUp(const std::string& path) const {
  const std::string host = host_ + '/' + platform::releaseName(path);
  struct stat status {};
  if (real_.empty() || lstat(host.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  std::error_code failed;
  const std::string end = fs::canonical(host, failed).string();
  if (failed) return std::nullopt;
  if (end == real_) return "";
  const std::string inside = real_ == "/" ? real_ : real_ + '/';
  if (!end.starts_with(inside)) return std::nullopt;
  std::string place;
  for (const fs::path& component : fs::path(end.substr(inside.size())))
    place = joined(place, platform::holdName(component.string()));
  return place;
}

std::vector<GuardedMember> membersOf(std::string_view verboseListing) {
  std::vector<GuardedMember> members;
  for (const std::string_view line : completeLines(verboseListing)) {
    const auto entry = parseListingLine(line);
    if (!entry) continue;
    std::vector<GuardedMember> readings;
    for (const EntryPath& path : linkReadings(*entry))
      readings.push_back(
          {heldName(path.name), entry->mode.front(), path.target ? heldName(*path.target) : ""});
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
