#include "archive/PackageControl.h"

#include <algorithm>
#include <array>

#include "archive/ListingLine.h"
#include "platform/Ascii.h"
#include "platform/HeldName.h"

namespace archive {
namespace {

constexpr std::size_t longestShown = 100;  ///< bytes of a value in the log
constexpr std::string_view blanks = " \t\r";

struct Field {
  std::string_view name;  ///< lower case
  std::string PackageControl::*value;
};
constexpr std::array<Field, 4> fields = {{{"package", &PackageControl::package},
                                          {"version", &PackageControl::version},
                                          {"architecture", &PackageControl::architecture},
                                          {"installed-size", &PackageControl::installedSize}}};

constexpr std::array<std::string_view, 4> scriptNames = {"preinst", "postinst", "prerm", "postrm"};

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The first of fields that are written twice counts.
void takeField(PackageControl& control, std::string_view line) {
  const std::size_t colon = line.find(':');
  if (colon == line.npos) return;
  const std::string name = platform::lowerAscii(trimmed(line.substr(0, colon)));
  for (const Field& field : fields)
    if (field.name == name && (control.*field.value).empty())
      control.*field.value = trimmed(line.substr(colon + 1));
}

std::string shown(std::string_view value) {
  const bool cut = value.size() > longestShown;
  return platform::shownName(platform::holdName(value.substr(0, longestShown))) + (cut ? "..." : "");
}

bool isRead(const ArchiveEntry& entry) {
  return entry.mode.front() == '-' && byteCount(entry).value_or(longestControl + 1) <= longestControl;
}

}  // namespace

std::optional<PackageControl> parsePackageControl(std::string_view text) {
  if (text.size() > longestControl) return std::nullopt;
  PackageControl control;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (trimmed(line).empty()) break;
    if (blanks.find(line.front()) == blanks.npos) takeField(control, line);
  }
  return control.package.empty() ? std::nullopt : std::optional(std::move(control));
}

ControlMembers controlMembers(std::string_view verboseListing) {
  ControlMembers members;
  std::array<bool, scriptNames.size()> there{};
  bool controlSeen = false;  // of several, tar gives the first
  for (const std::string_view line : completeLines(verboseListing)) {
    const auto entry = parseListingLine(line);
    if (!entry || entry->mode.front() == 'd') continue;
    std::string_view name = splitLinkText(*entry).name;
    if (name.starts_with("./")) name.remove_prefix(2);
    if (name == "control" && !controlSeen && isRead(*entry)) members.control = entry->path;
    controlSeen = controlSeen || name == "control";
    const auto script = std::find(scriptNames.begin(), scriptNames.end(), name);
    if (script != scriptNames.end()) there[static_cast<std::size_t>(script - scriptNames.begin())] = true;
  }
  for (std::size_t i = 0; i < there.size(); ++i)
    if (there[i]) members.scripts.emplace_back(scriptNames[i]);
  return members;
}

std::string packageLine(const PackageControl& control, const std::vector<std::string>& scripts) {
  std::string line = " Package " + shown(control.package);
  if (!control.version.empty()) line += ", version " + shown(control.version);
  if (!control.architecture.empty()) line += ", for " + shown(control.architecture);
  if (!control.installedSize.empty()) line += ", installed size " + shown(control.installedSize);
  for (const std::string& script : scripts)
    line += (&script == &scripts.front() ? "; it runs scripts: " : ", ") + script;
  return line;
}

}  // namespace archive
