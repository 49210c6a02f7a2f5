#include "platform/Registry.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

#include "platform/RegistryText.h"
#include "platform/Replacement.h"
#include "platform/TypedPath.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t largestFile = 1024 * 1024;
constexpr auto lockPatience = std::chrono::seconds(2);
constexpr auto lockPause = std::chrono::milliseconds(5);

enum class State { Absent, Good, Damaged, Unreadable };

struct Loaded {
  State state = State::Absent;
  RegistryText text;  ///< empty unless Good
  std::string why;    ///< Damaged and Unreadable
};

Loaded unreadable(int error) {
  if (error == ENOENT || error == ENOTDIR) return {};
  return {State::Unreadable, {}, std::generic_category().message(error)};
}

Loaded parse(std::string_view bytes) {
  Loaded loaded;
  const std::size_t badLine = loaded.text.read(bytes);
  if (badLine != 0) return {State::Damaged, {}, "line " + std::to_string(badLine)};
  loaded.state = State::Good;
  return loaded;
}

Loaded load(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return unreadable(errno);
  if (!S_ISREG(status.st_mode)) return {State::Damaged, {}, "not a file"};
  std::string bytes;
  std::array<char, 64 * 1024> buffer;
  while (bytes.size() <= largestFile) {
    const std::optional<std::size_t> count = readSome(file.get(), buffer.data(), buffer.size());
    if (!count) return unreadable(errno);
    if (*count == 0) return parse(bytes);
    bytes.append(buffer.data(), *count);
  }
  return {State::Damaged, {}, "too large"};
}

/// Root may run with the home folder of a user: what it makes below that belongs to the user. What the path
/// stands for is never followed away from there.
void giveToHomesOwner(const std::string& path) {
  const std::string home = homeFolder();
  struct stat owner {};
  if (geteuid() != 0 || !path.starts_with(home + '/') || stat(home.c_str(), &owner) != 0) return;
  // Refused, it stays root's, and only the next start of the user's tells.
  if (owner.st_uid != 0 && lchown(path.c_str(), owner.st_uid, owner.st_gid) != 0) return;
}

/// Keeps a second instance away for as long as it lives. The lock file stays: removing it could leave two
/// instances with a lock each.
class Lock {
 public:
  explicit Lock(const std::string& path)
      : file_(open((path + ".lock").c_str(), O_RDONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0644)) {
    giveToHomesOwner(path + ".lock");
    const auto end = std::chrono::steady_clock::now() + lockPatience;
    while (file_ && !(held_ = flock(file_.get(), LOCK_EX | LOCK_NB) == 0)) {
      if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() > end) return;
      std::this_thread::sleep_for(lockPause);
    }
  }
  explicit operator bool() const { return held_; }

 private:
  Descriptor file_;
  bool held_ = false;
};

/// Makes the folder of a file and its missing parents, open to the user alone.
void makeFolderOf(const fs::path& file) {
  const fs::path folder = file.parent_path();
  if (folder.empty()) return;
  if (mkdir(folder.c_str(), S_IRWXU) != 0) {
    if (errno != ENOENT) return;
    makeFolderOf(folder);
    if (mkdir(folder.c_str(), S_IRWXU) != 0) return;
  }
  giveToHomesOwner(folder);
}

/// What a link stands for, whether or not that exists; the path itself where it is no link.
std::string behindLinks(const std::string& path) {
  constexpr int mostLinks = 40;
  fs::path at = path;
  std::error_code failed;
  for (int i = 0; i < mostLinks; ++i) {
    const fs::path target = fs::read_symlink(at, failed);
    if (failed) return at.string();
    at = at.parent_path() / target;
  }
  return path;
}

/// A file that was made read-only is meant to stay as it is. The owner stays too: settings that were changed
/// by root must not become unreadable for their user.
bool replace(const std::string& path, std::string_view bytes) {
  makeFolderOf(path);
  if (access(path.c_str(), W_OK) != 0 && errno != ENOENT) return false;
  Replacement file(path, S_IRUSR | S_IWUSR);
  if (!file || !writeAll(file.get(), bytes)) return false;
  if (const auto& old = file.replaced()) {
    const bool foreign = old->st_uid != geteuid() || old->st_gid != getegid();
    if (foreign && fchown(file.get(), old->st_uid, old->st_gid) != 0 && geteuid() == 0) return false;
    if (fchmod(file.get(), old->st_mode & 0777) != 0) return false;
  }
  const bool isNew = !file.replaced();
  if (!file.sync() || !file.commit()) return false;
  if (isNew) giveToHomesOwner(path);
  return true;
}

std::string freeNameBeside(const std::string& path) {
  const std::string first = path + ".damaged";
  std::string name = first;
  struct stat status {};
  for (int i = 2; lstat(name.c_str(), &status) == 0; ++i) name = first + '-' + std::to_string(i);
  return name;
}

std::string storeKey(std::string_view application, std::string_view section) {
  return std::string("Settings\\").append(application).append("\\").append(section);
}

}  // namespace

Registry::Registry(std::string userFile, std::string siteFile, Report report)
    : userFile_(std::move(userFile)), siteFile_(std::move(siteFile)), report_(std::move(report)) {}

Registry Registry::forUser(Report report) {
  const char* const named = std::getenv("XDG_CONFIG_HOME");
  const std::string folder = named != nullptr && *named == '/' ? named : homeFolder() + "/.config";
  return {folder + "/pakrune/registry.txt", "/etc/pakrune/registry.txt", std::move(report)};
}

std::optional<RegistryValue> Registry::read(Hive hive, std::string_view key, std::string_view name) const {
  const Loaded user = load(userFile_);
  if (user.state == State::Damaged) {
    News news;
    {
      const Lock lock(userFile_);
      news = setAside(static_cast<bool>(lock));
    }
    tell(news);
  } else if (user.state == State::Unreadable) {
    tell({"Settings cannot be read: " + userFile_ + ": " + user.why});
  }
  if (auto value = user.text.find(hive, key, name)) return value;
  const Loaded site = load(siteFile_);
  if (!site.why.empty()) tell({"Site settings are not used: " + siteFile_ + ": " + site.why});
  return site.text.find(hive, key, name);
}

bool Registry::write(Hive hive, std::string_view key, std::string_view name, const RegistryValue& value) {
  News news;
  const bool written = change(hive, key, name, value, news);
  tell(news);
  return written;
}

/// Runs under the lock, so what is to be told waits until it is released: who listens may read settings.
bool Registry::change(Hive hive, std::string_view key, std::string_view name, const RegistryValue& value,
                      News& news) {
  makeFolderOf(userFile_);
  const Lock lock(userFile_);
  if (!lock) return false;
  Loaded now = load(userFile_);
  if (now.state == State::Damaged) {
    news = setAside(true);
    now = load(userFile_);
  }
  if (now.state == State::Unreadable) news = {"Settings cannot be read: " + userFile_ + ": " + now.why};
  if (!now.why.empty() || !now.text.set(hive, key, name, value)) return false;
  const std::string bytes = now.text.bytes();
  return bytes.size() <= largestFile && replace(behindLinks(userFile_), bytes);
}

/// Moves the name itself, never what a link leads to. Looks again, because another instance may have mended
/// it before the lock was held.
Registry::News Registry::setAside(bool locked) const {
  const Loaded now = load(userFile_);
  if (now.state != State::Damaged) return {};
  const std::string damaged = "Settings are damaged: " + userFile_ + " (" + now.why + "); ";
  const std::string aside = freeNameBeside(userFile_);
  if (!locked || ::rename(userFile_.c_str(), aside.c_str()) != 0)
    return {damaged + "not used, and cannot be set aside"};
  return {damaged + "set aside as " + aside, Often::Always};
}

/// Remembered before it is told: a listener that reads settings does not hear the same again.
void Registry::tell(const News& news) const {
  if (news.line.empty() || !report_) return;
  const bool fresh = told_.insert(news.line).second;
  if (fresh || news.often == Often::Always) report_(news.line);
}

std::string UserSettings::read(std::string_view application, std::string_view section, std::string_view key,
                               std::string_view fallback) const {
  const auto value = registry_.read(Hive::CurrentUser, storeKey(application, section), key);
  return value && value->type == ValueType::Text ? value->text : std::string(fallback);
}

bool UserSettings::write(std::string_view application, std::string_view section, std::string_view key,
                         std::string_view text) {
  return registry_.write(Hive::CurrentUser, storeKey(application, section), key,
                         {ValueType::Text, std::string(text)});
}

}  // namespace platform
