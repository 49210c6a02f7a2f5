#include "archive/PackCommand.h"

#include <algorithm>
#include <array>

#include "runtime/modAPI.h"

namespace archive {
namespace {

/// Only a folder that is packed as a whole is given with a "/" behind it; that one stands without quotes as
/// long as no blank would split it.
bool standsUnquoted(const std::string& name) {
  return !name.empty() && name.back() == '/' && name.find(' ') == std::string::npos;
}

/// Where the own name's last "." stands; npos without one.
std::size_t ownDot(const std::string& path) {
  const std::size_t mark = path.find_last_of(".\\");
  return mark != std::string::npos && path[mark] == '.' ? mark : std::string::npos;
}

std::string oneFileOutput(const std::string& path) {
  const std::size_t dot = ownDot(path);
  return dot == std::string::npos ? path + ".tgz" : path.substr(0, dot + 1) + "tgz";
}

}  // namespace

bool usr8Support(std::string_view stored) { return stored.empty() || stored == "1"; }

std::string proposedOutput(const PackSelection& selection, bool singleIsFolder) {
  if (selection.selectedPaths.size() == 1) {
    const std::string& path = selection.selectedPaths.front();
    return singleIsFolder ? path + ".tgz" : oneFileOutput(path);
  }
  const std::string& folder = selection.currentFolder;
  return runtime::withTrailingBackslash(folder) + runtime::GetFileName(folder) + ".tgz";
}

std::string withArchiveExtension(const std::string& path, int filterIndex) {
  if (ownDot(path) != std::string::npos) return path;
  constexpr std::array<const char*, 3> extensions = {".tgz", ".tar", ".tbz2"};
  return path + extensions.at(static_cast<std::size_t>(std::clamp(filterIndex, 1, 3)) - 1);
}

std::string quotedNames(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += standsUnquoted(name) ? name : '"' + name + "\" ";
  return text;
}

std::string ownerOptions(const PackSettings& settings) {
  std::string options;
  if (settings.setOwner) options += "--owner=" + std::to_string(settings.ownerId) + ' ';
  if (settings.setGroup) options += "--group=" + std::to_string(settings.groupId) + ' ';
  return options;
}

std::string memberOptions(const PackSettings& settings) {
  std::string options;
  if (settings.time) options += "--mtime=@" + std::to_string(*settings.time) + ' ';
  std::string mode;
  for (const auto& [who, shift] : {std::pair{'u', 6}, {'g', 3}, {'o', 0}}) {
    const unsigned digit = settings.umask >> shift & 7U;
    if (digit == 0) continue;
    mode += (mode.empty() ? std::string() : ",") + who + '-';
    for (const auto& [letter, bit] : {std::pair{'r', 4U}, {'w', 2U}, {'x', 1U}})
      if ((digit & bit) != 0) mode += letter;
  }
  return mode.empty() ? options : options + "--mode=" + mode + ' ';
}

std::string tarCommand(const PackSettings& settings, runtime::ArchiveKind kind, char mode,
                       const NameList& list, std::string_view listText, std::string_view stagingTmp,
                       std::string_view outputPath) {
  const bool staged = !stagingTmp.empty();
  const std::string owner = ownerOptions(settings);
  constexpr const char* numeric = "--numeric-owner ";
  const bool numericFirst = !staged && list.nothingSelected;
  std::string command = "tar.exe -C " + runtime::ToCygwinPath(staged ? stagingTmp : list.workingFolder);
  command += " -" + runtime::kindLetter(kind) + mode + (staged ? "vP " : "v ");
  command += (numericFirst ? numeric + owner : owner + numeric) + memberOptions(settings);
  command += "-f " + runtime::ToCygwinPath(outputPath) + ' ';
  command += listText;
  if (staged) command += " ../usr8";  // "P" keeps the ".." in the name
  return command;
}

}  // namespace archive
