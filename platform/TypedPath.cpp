#include "platform/TypedPath.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "platform/HeldName.h"
#include "platform/ResolvedPath.h"

namespace platform {
namespace {

constexpr std::string_view separators = "/\\";

bool entryThere(const std::string& hostPath) {
  struct stat status {};
  return lstat(hostPath.c_str(), &status) == 0;
}

std::string_view withoutQuotes(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  return first == text.npos ? std::string_view()
                            : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

/// "C:", "c:/x", "C:\x".
bool beginsWithDrive(std::string_view text) {
  return text.size() >= 2 && isLetter(text[0]) && text[1] == ':' &&
         (text.size() == 2 || separators.find(text[2]) != separators.npos);
}

/// `front` ends in a backslash. Each component is held: then it is the one that a folder's listing gives.
std::string below(std::string front, std::string_view rest) {
  const bool asFolder = !rest.empty() && separators.find(rest.back()) != separators.npos;
  bool any = false;
  while (!rest.empty()) {
    const std::string_view name = rest.substr(0, rest.find_first_of(separators));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (name.empty() || name == ".") continue;
    if (any) front += '\\';
    front += holdName(releaseName(name));
    any = true;
  }
  constexpr std::size_t rootLength = 3;
  if (any && asFolder) front += '\\';
  if (!any && !asFolder && front.size() > rootLength) front.pop_back();
  return front;
}

std::string withBackslash(std::string_view folder) {
  std::string text(folder);
  if (!text.ends_with('\\')) text += '\\';
  return text;
}

class Reader {
 public:
  Reader(const DriveTable& drives, std::string_view folder) : drives_(drives), folder_(folder) {}

  TypedPath read(std::string_view text) const {
    if (text.empty()) return {"", "No path was given"};
    if (text.starts_with("\\\\"))
      return {"", "'" + std::string(text) + "' is a network path; mount the share and open its folder"};
    if (text == "~" || text.starts_with("~/")) return host(homeFolder() + std::string(text.substr(1)));
    if (text.starts_with('/')) return host(drives_.toHost(text).value_or(std::string(text)));
    if (beginsWithDrive(text)) return onDrive(text);
    return relative(text);
  }

 private:
  TypedPath host(const std::string& path) const {
    std::string windows = drives_.toWindows(path);
    if (path.ends_with('/') && !windows.ends_with('\\')) windows += '\\';
    return followed(windows);
  }

  TypedPath onDrive(std::string_view text) const {
    std::string root(text.substr(0, 2));
    if (isLetter(root[0]) && root[0] >= 'a') root[0] = static_cast<char>(root[0] - 'a' + 'A');
    if (!drives_.toHost(root)) return {"", "There is no drive '" + root + "'"};
    return followed(below(root + "\\", text.substr(2)));
  }

  TypedPath relative(std::string_view text) const {
    if (folder_.empty())
      return {"", "'" + std::string(text) + "' is relative, and the folder that it begins at is gone"};
    const std::string front = withBackslash(folder_);
    const auto at = drives_.toHost(front);
    const bool asName = text.find('\\') != text.npos && at && entryThere(*at + '/' + std::string(text));
    return asName ? host(*at + '/' + std::string(text)) : followed(below(front, text));
  }

  /// A backslash at the end does not hide a "..".
  TypedPath followed(const std::string& path) const {
    if (!path.ends_with("\\..\\")) return {withoutDotDot(drives_, path), ""};
    return {withBackslash(withoutDotDot(drives_, path.substr(0, path.size() - 1))), ""};
  }

  const DriveTable& drives_;
  std::string_view folder_;
};

}  // namespace

TypedPath typedPath(const DriveTable& drives, std::string_view text, std::string_view folder) {
  const Reader reader(drives, folder);
  const std::string_view bare = trimmed(text);
  if (bare.size() != text.size() && !bare.empty()) {
    const TypedPath asItStands = reader.read(withoutQuotes(text));
    const auto host = asItStands ? drives.toHost(asItStands.path) : std::nullopt;
    if (host && entryThere(*host)) return asItStands;
  }
  return reader.read(withoutQuotes(bare));
}

std::string homeFolder() {
  const char* const home = std::getenv("HOME");
  if (home != nullptr && *home == '/') return home;
  const passwd* const user = getpwuid(geteuid());
  return user == nullptr ? "/" : user->pw_dir;
}

}  // namespace platform
