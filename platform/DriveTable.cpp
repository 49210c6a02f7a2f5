#include "platform/DriveTable.h"

#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "platform/HeldName.h"

namespace platform {
namespace {

constexpr std::string_view cygdrive = "/cygdrive/";

bool isSeparator(char c) { return c == '/' || c == '\\'; }

/// 'A' to 'Z', or NUL for anything but a letter.
char driveLetter(char c) {
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  return c >= 'A' && c <= 'Z' ? c : '\0';
}

/// Calls `use` for each component between separators; empty ones and "." are left out.
template <typename IsSeparator, typename Use>
void eachComponent(std::string_view path, IsSeparator isBetween, Use use) {
  auto at = path.begin();
  while (at != path.end()) {
    const auto end = std::find_if(at, path.end(), isBetween);
    const std::string_view component(at, end);
    if (!component.empty() && component != ".") use(component);
    at = end == path.end() ? end : end + 1;
  }
}

/// An absolute host path without doubled or trailing '/' and without ".".
std::string folded(std::string_view hostPath) {
  std::string out;
  eachComponent(
      hostPath, [](char c) { return c == '/'; },
      [&out](std::string_view component) { out.append("/").append(component); });
  return out.empty() ? "/" : out;
}

std::vector<DriveTable::Drive>::const_iterator findLetter(const std::vector<DriveTable::Drive>& drives,
                                                          char letter) {
  return std::find_if(drives.begin(), drives.end(), [letter](const auto& d) { return d.letter == letter; });
}

bool hasLetter(const std::vector<DriveTable::Drive>& drives, char letter) {
  return findLetter(drives, letter) != drives.end();
}

bool hasFolder(const std::vector<DriveTable::Drive>& drives, std::string_view folder) {
  return std::any_of(drives.begin(), drives.end(),
                     [folder](const auto& d) { return d.hostFolder == folder; });
}

void sortByLetter(std::vector<DriveTable::Drive>& drives) {
  std::sort(drives.begin(), drives.end(), [](const auto& a, const auto& b) { return a.letter < b.letter; });
}

/// With every letter taken, Z gives way: a host path without a name would be worse.
void nameTheRoot(std::vector<DriveTable::Drive>& drives) {
  if (hasFolder(drives, "/")) return;
  char letter = 'Z';
  while (letter >= 'A' && hasLetter(drives, letter)) --letter;
  if (letter < 'A') {
    letter = 'Z';
    drives.erase(findLetter(drives, letter));
  }
  drives.push_back({letter, "/"});
}

/// The length of the part of `path` that `folder` names, or npos. Both are folded.
std::size_t matchLength(std::string_view folder, std::string_view path) {
  if (folder == "/") return 0;
  if (path.substr(0, folder.size()) != folder) return std::string_view::npos;
  const bool whole = path.size() == folder.size() || path[folder.size()] == '/';
  return whole ? folder.size() : std::string_view::npos;
}

/// Splits "C:\a", "c:/a", "C:" and "/cygdrive/c/a" into letter and rest; NUL for anything else.
char splitDrive(std::string_view path, std::string_view& rest) {
  std::size_t behind = 2;
  char letter = '\0';
  if (path.size() >= 2 && path[1] == ':') {
    letter = driveLetter(path[0]);
  } else if (path.size() > cygdrive.size() && path.substr(0, cygdrive.size()) == cygdrive) {
    letter = driveLetter(path[cygdrive.size()]);
    behind = cygdrive.size() + 1;
  }
  if (letter == '\0') return letter;
  rest = path.substr(behind);
  return rest.empty() || isSeparator(rest.front()) ? letter : '\0';
}

std::string userName() {
  const passwd* const user = getpwuid(geteuid());
  return user == nullptr ? std::string() : std::string(user->pw_name);
}

/// Folders inside `parent` on which another file system is mounted; a folder that an ended mount left
/// behind is none.
void addMountedIn(const std::string& parent, std::vector<std::string>& volumes) {
  struct stat outer {};
  if (stat(parent.c_str(), &outer) != 0) return;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(parent.c_str()), closedir);
  if (!folder) return;
  while (const dirent* const entry = readdir(folder.get())) {
    const std::string name = entry->d_name;
    const std::string path = parent + "/" + name;
    struct stat inner {};
    if (name == "." || name == ".." || lstat(path.c_str(), &inner) != 0) continue;
    if (S_ISDIR(inner.st_mode) && inner.st_dev != outer.st_dev) volumes.push_back(path);
  }
}

std::vector<std::string> mountedVolumes() {
  std::vector<std::string> volumes;
  const std::string user = userName();
  if (user.empty()) return volumes;
  addMountedIn("/media/" + user, volumes);
  addMountedIn("/run/media/" + user, volumes);
  std::sort(volumes.begin(), volumes.end());
  return volumes;
}

/// "C=/srv/a;D=/mnt/b"; what is not of that form is left out.
std::vector<DriveTable::Drive> parseTable(std::string_view text) {
  std::vector<DriveTable::Drive> drives;
  while (!text.empty()) {
    const std::string_view item = text.substr(0, text.find(';'));
    text.remove_prefix(std::min(text.size(), item.size() + 1));
    if (item.size() > 2 && item[1] == '=') drives.push_back({item[0], std::string(item.substr(2))});
  }
  return drives;
}

}  // namespace

DriveTable::DriveTable(std::vector<Drive> drives) {
  for (const Drive& drive : drives) {
    const char letter = driveLetter(drive.letter);
    const bool absolute = !drive.hostFolder.empty() && drive.hostFolder.front() == '/';
    if (letter == '\0' || !absolute || hasLetter(drives_, letter)) continue;
    drives_.push_back({letter, folded(drive.hostFolder)});
  }
  nameTheRoot(drives_);
  sortByLetter(drives_);
}

DriveTable DriveTable::fromText(std::string_view text, std::string_view home) {
  if (!text.empty()) return DriveTable(parseTable(text));
  const bool absolute = !home.empty() && home.front() == '/';
  DriveTable table({{'C', absolute ? std::string(home) : "/"}, {'Z', "/"}});
  table.fixed_ = false;
  table.readAgain();
  return table;
}

std::optional<std::string> DriveTable::toHost(std::string_view windowsPath) const {
  std::string_view rest;
  const char letter = splitDrive(windowsPath, rest);
  const auto drive = findLetter(drives_, letter);
  if (drive == drives_.end()) return std::nullopt;
  std::string host = drive->hostFolder == "/" ? "" : drive->hostFolder;
  eachComponent(rest, isSeparator,
                [&host](std::string_view component) { host.append("/").append(releaseName(component)); });
  // The system would read such a path only up to the NUL, and so name something else.
  if (host.find('\0') != std::string::npos) return std::nullopt;
  return host.empty() ? "/" : host;
}

bool DriveTable::isRoot(std::string_view windowsPath) const {
  std::string_view rest;
  if (!hasLetter(drives_, splitDrive(windowsPath, rest))) return false;
  bool isRoot = true;
  eachComponent(rest, isSeparator, [&isRoot](std::string_view) { isRoot = false; });
  return isRoot;
}

std::string DriveTable::toWindows(std::string_view hostPath) const {
  const std::string path = folded(hostPath);
  char letter = '\0';
  std::size_t longest = 0;
  for (const Drive& drive : drives_) {
    const std::size_t length = matchLength(drive.hostFolder, path);
    if (length == std::string::npos || (letter != '\0' && length <= longest)) continue;
    letter = drive.letter;
    longest = length;
  }
  const std::string root = {letter, ':'};
  std::string out = root;
  eachComponent(
      std::string_view(path).substr(longest), [](char c) { return c == '/'; },
      [&out](std::string_view component) { out.append("\\").append(holdName(component)); });
  return out == root ? root + "\\" : out;
}

void DriveTable::readAgain() {
  if (!fixed_) showVolumes(mountedVolumes());
}

void DriveTable::showVolumes(const std::vector<std::string>& folders) {
  std::erase_if(drives_, [this](const Drive& drive) { return hasLetter(volumes_, drive.letter); });
  for (const std::string& folder : folders) {
    if (hasFolder(volumes_, folder)) continue;
    char letter = 'D';
    while (hasLetter(drives_, letter) || hasLetter(volumes_, letter)) ++letter;
    if (letter <= 'Z') volumes_.push_back({letter, folder});
  }
  for (const Drive& volume : volumes_) {
    if (std::find(folders.begin(), folders.end(), volume.hostFolder) != folders.end())
      drives_.push_back(volume);
  }
  sortByLetter(drives_);
}

}  // namespace platform
