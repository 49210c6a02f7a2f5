#include "tools/kt500sim_installer.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "tools/kt500sim_event.h"
#include "tools/kt500sim_options.h"
#include "tools/kt500sim_tar.h"

namespace kt500sim {
namespace {

/// Of an archive that may be unpacked.
struct Contents {
  std::uint64_t size = 0;  ///< bytes of all files
  bool forUsr8 = false;
};

constexpr std::string_view endings[] = {".tgz", ".tar", ".gz", ".bz2"};

/// Lists the archive's members; false when one is refused, or tar or we cannot read it.
template <typename Each>
bool forEachMember(const std::string& archive, Each each) {
  return runTar({"--force-local", "-P", "-tv", "--numeric-owner", "--quoting-style=escape", "-f", archive},
                [&each](std::string_view line) {
                  Member member;
                  if (readMember(line, member)) return each(member);
                  event("tar says: " + std::string(line));
                  return line.starts_with("tar: ");
                });
}

/// nullopt: it is not to be unpacked, and an event says why.
std::optional<Contents> checkMembers(const std::string& archive, std::uint64_t free) {
  Contents contents;
  const bool good = forEachMember(archive, [&contents, free](const Member& member) {
    const std::uint64_t size = readNumber(member.size).value_or(0);
    const bool inside = staysInside(member);
    const bool fits = size <= free - contents.size;
    if (!inside || !fits) event((inside ? "no space for: " : "leads elsewhere: ") + member.name);
    if (fits) contents.size += size;
    contents.forUsr8 = contents.forUsr8 || member.name.starts_with(besideHome);
    return inside && fits;
  });
  return good ? std::optional(contents) : std::nullopt;
}

bool runUnpacking(const std::string& home, const std::string& archive,
                  const std::vector<std::string>& which) {
  std::vector<std::string> arguments = {
      "--force-local", "-x", "--no-same-owner", "--no-same-permissions", "-C", home, "-f", archive};
  arguments.insert(arguments.end(), which.begin(), which.end());
  return runTar(arguments, [](std::string_view line) {
    event("tar says: " + std::string(line));
    return true;
  });
}

/// As a terminal's tar would, but for links that stand in the way and modes beyond rwx. tar is told to take
/// ".." for the other home only; what belongs into the owner's it keeps below that, too.
bool unpack(const std::string& home, const std::string& archive, bool forUsr8) {
  const std::string beside(besideHome);
  return runUnpacking(home, archive, {"--anchored", "--no-wildcards", "--exclude=" + beside}) &&
         (!forUsr8 || runUnpacking(home, archive, {"-P", "--no-wildcards", beside}));
}

/// Where the terminal has it, seen from its root.
std::string placeOf(const std::string& name, const std::string& owner) {
  return name.starts_with(besideHome) ? "home/" + name.substr(3) : "home/" + owner + "/" + name;
}

}  // namespace

bool isInstallable(const std::string& name) {
  return std::any_of(std::begin(endings), std::end(endings),
                     [&name](std::string_view ending) { return name.ends_with(ending); });
}

void install(const Store& store, std::uint64_t free, const std::string& name, const std::string& owner) {
  const std::string archive = store.folder() + "/" + name;
  const std::string home = store.homeOf(owner);
  const bool homes = !home.empty() && !store.homeOf("usr8").empty();
  const auto contents = homes ? checkMembers(archive, free) : std::nullopt;
  if (!contents || !unpack(home, archive, contents->forUsr8)) return event("not installed: " + shown(name));
  event("installed " + shown(name) + " in home/" + owner);
  forEachMember(archive, [&owner](const Member& member) {
    event("member " + member.mode + " " + member.owner + " " + member.size + " " +
          placeOf(member.name, owner));
    return true;
  });
}

}  // namespace kt500sim
