#include "tools/kt500sim_installer.h"

#include <algorithm>
#include <iterator>

#include "tools/kt500sim_event.h"
#include "tools/kt500sim_tar.h"

namespace kt500sim {
namespace {

constexpr std::string_view endings[] = {".tgz", ".tar", ".gz", ".bz2"};

/// Lists the archive's members; false when one is refused or tar cannot read it.
template <typename Each>
bool forEachMember(const std::string& archive, Each each) {
  return runTar({"--force-local", "-P", "-tv", "--numeric-owner", "--quoting-style=escape", "-f", archive},
                [&each](std::string_view line) {
                  Member member;
                  if (readMember(line, member)) return each(member);
                  event("tar says: " + std::string(line));
                  return true;
                });
}

bool checkMembers(const std::string& archive) {
  return forEachMember(archive, [](const Member& member) {
    if (staysInside(member)) return true;
    event("leads elsewhere: " + member.name);
    return false;
  });
}

/// As a terminal's tar would, but for links that stand in the way and modes beyond rwx.
bool unpack(const std::string& archive, const std::string& home) {
  return runTar(
      {"--force-local", "-P", "-x", "--no-same-owner", "--no-same-permissions", "-C", home, "-f", archive},
      [](std::string_view line) {
        event("tar says: " + std::string(line));
        return true;
      });
}

/// Where the terminal has it, seen from its root.
std::string placeOf(const std::string& name, const std::string& owner) {
  return name.starts_with("../usr8") ? "home/" + name.substr(3) : "home/" + owner + "/" + name;
}

}  // namespace

bool isInstallable(const std::string& name) {
  return std::any_of(std::begin(endings), std::end(endings),
                     [&name](std::string_view ending) { return name.ends_with(ending); });
}

void install(const Store& store, const std::string& name, const std::string& owner) {
  const std::string archive = store.folder() + "/" + name;
  const std::string home = store.homeOf(owner);
  if (home.empty() || store.homeOf("usr8").empty() || !checkMembers(archive) || !unpack(archive, home))
    return event("not installed: " + shown(name));
  event("installed " + shown(name) + " in home/" + owner);
  forEachMember(archive, [&owner](const Member& member) {
    event("member " + member.mode + " " + member.owner + " " + member.size + " " +
          placeOf(member.name, owner));
    return true;
  });
}

}  // namespace kt500sim
