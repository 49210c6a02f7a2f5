#include "platform/Environment.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <utility>

namespace platform {
namespace {

constexpr std::string_view pathName = "PATH";
constexpr std::string_view tarOptionsName = "TAR_OPTIONS";

/// What the tools' output depends on is ours to say.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> ours = {{
    {"LC_ALL", "C.UTF-8"},
    {"QUOTING_STYLE", "escape"},
    {tarOptionsName, "--sort=name --no-unquote"},
}};
/// The zone that a tool takes anyway. Said by name, it is read once, and not looked at for every line of a
/// listing, which takes a quarter of tar's time.
constexpr const char* systemZone = "TZ=:/etc/localtime";
constexpr std::array<std::string_view, 10> dropped = {
    "LANGUAGE",        "GZIP",       "PIGZ",         "BZIP", "BZIP2", "LBZIP2", "TIME_STYLE",
    "POSIXLY_CORRECT", "BLOCK_SIZE", "LS_BLOCK_SIZE"};

bool isPath(std::string_view name) {
  return name.size() == pathName.size() && strncasecmp(name.data(), pathName.data(), name.size()) == 0;
}

bool passedOn(std::string_view name) {
  const bool isOurs =
      std::any_of(ours.begin(), ours.end(), [name](const auto& o) { return o.first == name; });
  return !isOurs && std::find(dropped.begin(), dropped.end(), name) == dropped.end();
}

/// Calls `use` for each entry that is not empty.
template <typename Use>
void eachEntry(std::string_view path, char separator, Use use) {
  while (!path.empty()) {
    const std::string_view entry = path.substr(0, path.find(separator));
    path.remove_prefix(std::min(path.size(), entry.size() + 1));
    if (!entry.empty()) use(entry);
  }
}

/// The same for the program's own form, in which quotes keep a semicolon inside an entry and vanish.
template <typename Use>
void eachWindowsEntry(std::string_view path, Use use) {
  std::string entry;
  bool quoted = false;
  const auto finish = [&] {
    if (!entry.empty()) use(std::exchange(entry, {}));
  };
  for (const char c : path) {
    if (c == '"')
      quoted = !quoted;
    else if (c == ';' && !quoted)
      finish();
    else
      entry += c;
  }
  finish();
}

void appendEntry(std::string& path, char separator, std::string_view entry) {
  if (!path.empty()) path += separator;
  path += entry;
}

std::string toWindowsPath(const DriveTable& drives, std::string_view hostPath) {
  std::string path;
  eachEntry(hostPath, ':', [&](std::string_view entry) {
    appendEntry(path, ';', pathEntry(entry.front() == '/' ? drives.toWindows(entry) : std::string(entry)));
  });
  return path;
}

/// Relative entries, "." among them, name nothing; a colon would split an entry.
std::string toHostPath(const DriveTable& drives, std::string_view windowsPath) {
  std::string path;
  eachWindowsEntry(windowsPath, [&](const std::string& entry) {
    const auto folder = drives.toHost(entry);
    if (folder && folder->find(':') == std::string::npos) appendEntry(path, ':', *folder);
  });
  return path;
}

template <typename Values>
auto findName(Values& values, std::string_view name) {
  return std::find_if(values.begin(), values.end(),
                      [name](const auto& value) { return value.first == name; });
}

}  // namespace

std::string pathEntry(std::string_view folder) {
  const std::string entry(folder);
  return entry.find(';') == std::string::npos ? entry : '"' + entry + '"';
}

Environment::Environment(const DriveTable& drives, const char* const* hostEnvironment) : drives_(drives) {
  for (; *hostEnvironment != nullptr; ++hostEnvironment) {
    const std::string_view text = *hostEnvironment;
    const std::string_view name = text.substr(0, text.find('='));
    if (name.empty() || name.size() == text.size()) continue;
    // To the host a "Path" is another variable; here it could only hide the real one.
    if ((isPath(name) && name != pathName) || findName(values_, name) != values_.end()) continue;
    const std::string_view value = text.substr(name.size() + 1);
    values_.emplace_back(name, name == pathName ? toWindowsPath(drives, value) : std::string(value));
  }
}

std::string Environment::get(std::string_view name) const {
  const auto found = findName(values_, isPath(name) ? pathName : name);
  return found == values_.end() ? std::string() : found->second;
}

void Environment::set(std::string_view name, std::string_view value) {
  const std::string_view exact = isPath(name) ? pathName : name;
  const auto found = findName(values_, exact);
  if (found == values_.end())
    values_.emplace_back(exact, value);
  else
    found->second = value;
}

std::vector<std::string> Environment::forChild(std::string_view furtherTarOptions) const {
  std::vector<std::string> texts;
  for (const auto& [name, value] : values_) {
    if (passedOn(name)) texts.push_back(name + '=' + (name == pathName ? toHostPath(drives_, value) : value));
  }
  for (const auto& [name, value] : ours) {
    texts.push_back(std::string(name).append("=").append(value));
    if (name == tarOptionsName && !furtherTarOptions.empty())
      texts.back().append(" ").append(furtherTarOptions);
  }
  if (findName(values_, "TZ") == values_.end()) texts.emplace_back(systemZone);
  return texts;
}

std::vector<std::string> Environment::pathEntries() const {
  std::vector<std::string> entries;
  eachWindowsEntry(get(pathName), [&entries](std::string entry) { entries.push_back(std::move(entry)); });
  return entries;
}

}  // namespace platform
