#include "platform/StartProgram.h"

#include <sys/stat.h>

#include <algorithm>
#include <system_error>

#include "platform/DetachedStart.h"
#include "platform/ShellOpen.h"

namespace platform {
namespace {

constexpr std::string_view console = "cmd.exe";
constexpr std::string_view fileManager = "explorer";
constexpr std::string_view drivesName = "PAKRUNE_DRIVES=";

bool isFolder(const std::string& hostPath) {
  struct stat status {};
  return stat(hostPath.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The table of this run, so that the console reads a path as it was meant although volumes have come and
/// gone. Empty where a folder's name cannot be said in this form.
std::string tableText(const DriveTable& drives) {
  std::string text;
  for (const DriveTable::Drive& drive : drives.drives()) {
    if (drive.hostFolder.find(';') != std::string::npos) return {};
    text.append(1, drive.letter).append("=").append(drive.hostFolder).append(";");
  }
  return text;
}

std::vector<std::string> consoleEnvironment(const DriveTable& drives) {
  std::vector<std::string> texts = usersEnvironment();
  const std::string table = tableText(drives);
  if (table.empty()) return texts;
  std::erase_if(texts, [](const std::string& text) { return text.starts_with(drivesName); });
  texts.push_back(std::string(drivesName) + table);
  return texts;
}

std::string startConsole(const DriveTable& drives, const ProgramStart& start, std::string_view rest) {
  const std::string path = start.programFolder + "bin\\" + std::string(console);
  const auto program = drives.toHost(path);
  if (!program) return path + " names nothing here";
  const auto folder = drives.toHost(start.workingFolder);
  if (!start.workingFolder.empty() && (!folder || !isFolder(*folder)))
    return "there is no folder " + start.workingFolder;
  const int systemError = startDetached({*program,
                                         {std::string(console), std::string(rest)},
                                         consoleEnvironment(drives),
                                         folder.value_or(std::string())});
  if (systemError == 0) return {};
  return path + " cannot be started: " + std::generic_category().message(systemError);
}

std::string openFolder(const DriveTable& drives, const Environment& environment, std::string_view path) {
  const auto folder = drives.toHost(path);
  if (!folder || !isFolder(*folder)) return "there is no folder " + std::string(path);
  if (shellOpen(drives, environment, path, {})) return {};
  return "no file manager of this desktop can be started";
}

}  // namespace

std::string startProgram(const DriveTable& drives, const Environment& environment,
                         const ProgramStart& start) {
  const std::string_view text = start.commandText;
  if (text.find('\0') != text.npos) return "the command holds a character that ends it early";
  const std::string_view word = text.substr(0, text.find(' '));
  const std::string_view rest = text.substr(std::min(text.size(), word.size() + 1));
  if (word == console) return startConsole(drives, start, rest);
  if (word == fileManager) return openFolder(drives, environment, rest);
  return "\"" + std::string(word) + "\" is no program that can be started here";
}

}  // namespace platform
