#include "tools/kt500sim_installer.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "platform/DeleteTree.h"
#include "tools/kt500sim_merge.h"
#include "tools/kt500sim_options.h"
#include "tools/kt500sim_tar.h"

namespace kt500sim {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view endings[] = {".tgz", ".tar", ".gz", ".bz2"};
constexpr std::string_view speakers[] = {"tar: ", "gzip: ", "bzip2: "};  // no member's line begins so
constexpr const char* usr8 = "usr8";
constexpr std::size_t enoughWords = 300;  // bytes

/// Whether it is what they say; an empty line stands before some of it.
bool isRemark(std::string_view line) {
  return line.empty() || std::any_of(std::begin(speakers), std::end(speakers),
                                     [line](std::string_view speaker) { return line.starts_with(speaker); });
}

/// For another program, as long as the descriptor is open here.
std::string pathOf(int descriptor) {
  return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor);
}

/// A folder for the time being; gone with all in it when this goes.
class ScratchFolder {
 public:
  explicit ScratchFolder(std::string path) : path_(std::move(path)) {}
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() { platform::deleteHostTree(path_); }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// Steps return why they failed, empty: they did not.
class Installation {
 public:
  Installation(const Store& store, const Package& package, const Events& event)
      : store_(store), package_(package), event_(event), archive_(pathOf(package.archive)) {}
  std::string run();
  void tellMembers();

 private:
  template <typename Each>
  std::string forEachMember(Each each);
  std::string checkMembers();
  std::string makeHomes(const std::string& folder);
  std::string unpackInto(const std::string& home);
  std::string runUnpacking(const std::string& home, const std::vector<std::string>& which);
  std::string because(const std::string& end) const {
    return end.empty() || words_.empty() ? end : end + ": " + words_;
  }
  void tarSays(std::string_view line);

  const Store& store_;
  const Package& package_;
  const Events& event_;
  std::string archive_;
  std::string words_;  // of tar and its decompressor, in this run
  bool forUsr8_ = false;
};

void Installation::tarSays(std::string_view line) {
  if (line.empty()) return;
  event_("tar says: " + std::string(line));
  if (words_.size() < enoughWords) words_ += (words_.empty() ? "" : "; ") + std::string(line);
}

template <typename Each>
std::string Installation::forEachMember(Each each) {
  words_.clear();
  return because(
      runTar({"--force-local", "-P", "-tv", "--numeric-owner", "--quoting-style=escape", "-f", archive_},
             package_.until, [this, &each](std::string_view line) {
               Member member;
               if (readMember(line, member)) return each(member);
               tarSays(line);
               return isRemark(line);
             }));
}

std::string Installation::checkMembers() {
  std::uint64_t left = package_.free;
  std::string why;
  const std::string end = forEachMember([this, &left, &why](const Member& member) {
    const std::uint64_t size = readNumber(member.size).value_or(0);
    if (!staysInside(member)) why = "leads elsewhere: " + member.name;
    if (size > left) why = "no space for: " + member.name;
    left -= std::min(size, left);
    forUsr8_ = forUsr8_ || member.name.starts_with(besideHome);
    return why.empty();
  });
  return why.empty() ? end : why;
}

/// Of the owner and of usr8, with the modes that theirs have.
std::string Installation::makeHomes(const std::string& folder) {
  if (folder.empty()) return "cannot write below " + store_.folder();
  for (const std::string& account : {package_.owner, std::string(usr8)}) {
    std::error_code failed;
    fs::create_directory(folder + "/" + account, store_.homeOf(account), failed);
    if (failed) return failed.message();
  }
  return "";
}

std::string Installation::runUnpacking(const std::string& home, const std::vector<std::string>& which) {
  std::vector<std::string> arguments = {
      "--force-local", "-x", "--no-same-owner", "--no-same-permissions", "-C", home, "-f", archive_};
  arguments.insert(arguments.end(), which.begin(), which.end());
  words_.clear();
  return because(runTar(arguments, package_.until, [this](std::string_view line) {
    tarSays(line);
    return true;
  }));
}

/// As a terminal's tar would, but for modes beyond rwx. tar is told to take ".." for the other home only;
/// what belongs into the owner's it keeps below that, too.
std::string Installation::unpackInto(const std::string& home) {
  const std::string beside(besideHome);
  const std::string why = runUnpacking(home, {"--anchored", "--no-wildcards", "--exclude=" + beside});
  if (!why.empty() || !forUsr8_) return why;
  return runUnpacking(home, {"-P", "--no-wildcards", beside});
}

std::string Installation::run() {
  if (store_.homeOf(package_.owner).empty() || store_.homeOf(usr8).empty()) return "there is no home";
  if (const std::string why = checkMembers(); !why.empty()) return why;
  const ScratchFolder scratch(store_.newFolder());
  if (const std::string why = makeHomes(scratch.path()); !why.empty()) return why;
  if (const std::string why = unpackInto(scratch.path() + "/" + package_.owner); !why.empty()) return why;
  const auto lock = store_.lockHomes();
  return shown(mergeInto(scratch.path(), store_.folder() + "/home"));
}

/// Where the terminal has it, seen from its root.
std::string placeOf(const std::string& name, const std::string& owner) {
  return name.starts_with(besideHome) ? "home/" + name.substr(3) : "home/" + owner + "/" + name;
}

void Installation::tellMembers() {
  forEachMember([this](const Member& member) {
    event_("member " + member.mode + " " + member.owner + " " + member.size + " " +
           placeOf(member.name, package_.owner));
    return true;
  });
}

}  // namespace

bool isInstallable(const std::string& name) {
  return std::any_of(std::begin(endings), std::end(endings),
                     [&name](std::string_view ending) { return name.ends_with(ending); });
}

void install(const Store& store, const Package& package, const Events& event) {
  Installation installation(store, package, event);
  const std::string why = installation.run();
  if (!why.empty()) return event("not installed: " + shown(package.name) + ": " + why);
  event("installed " + shown(package.name) + " in home/" + package.owner);
  installation.tellMembers();
}

}  // namespace kt500sim
