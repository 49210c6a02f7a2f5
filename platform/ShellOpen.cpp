#include "platform/ShellOpen.h"

#include <unistd.h>

#include <string>

#include "platform/Ascii.h"
#include "platform/DetachedStart.h"
#include "platform/ProgramLookup.h"

namespace platform {
namespace {

constexpr const char* opener = "xdg-open";
constexpr const char* helpViewer = "hh.exe";
constexpr std::string_view helpExtension = ".chm";

/// A path and, of a help file, the page that is wanted.
struct Target {
  std::string_view path;
  std::string_view page;  // with the "::" in front; or empty
  bool isHelp = false;
};

Target targetOf(std::string_view text) {
  const std::string lower = lowerAscii(text);
  if (lower.ends_with(helpExtension)) return {text, {}, true};
  const std::size_t at = lower.rfind(std::string(helpExtension) + "::/");
  if (at == lower.npos) return {text, {}, false};
  const std::size_t end = at + helpExtension.size();
  return {text.substr(0, end), text.substr(end), true};
}

}  // namespace

bool shellOpen(const DriveTable& drives, const Environment& environment, std::string_view windowsPath,
               std::string_view workingFolder, std::string_view viewers) {
  const Target target = viewers.empty() ? Target{windowsPath, {}} : targetOf(windowsPath);
  const auto path = drives.toHost(target.path);
  const auto folder = drives.toHost(workingFolder);
  const auto program = target.isHelp ? findProgramIn(drives, {std::string(viewers)}, {helpViewer})
                                     : findProgramIn(drives, environment.pathEntries(), {opener});
  if (!path || !program || access(path->c_str(), F_OK) != 0) return false;
  const std::string argument = *path + std::string(target.page);
  return startDetached(
             {*program, {*program, argument}, usersEnvironment(), folder.value_or(std::string())}) == 0;
}

}  // namespace platform
