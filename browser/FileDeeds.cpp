#include "browser/FileDeeds.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/Ascii.h"
#include "platform/HeldName.h"
#include "platform/TextEditor.h"
#include "platform/Trash.h"

namespace browser {
namespace {

using platform::shownName;
using runtime::Buttons;
using runtime::Icon;
using runtime::JobEnd;

constexpr const char* errorTitle = "Error..";
constexpr const char* trashTitle = "Move to Trash..";
constexpr const char* newFolder = "New Folder";
constexpr std::size_t mostNamed = 10;
constexpr std::size_t mostEdited = 10;
constexpr mode_t beforeUmask = 0777;

std::string reason(int systemError) { return std::generic_category().message(systemError); }

/// The first ten, and how many more there are.
std::string listed(const std::vector<std::string>& texts, const char* between) {
  std::string text;
  for (std::size_t i = 0; i < std::min(mostNamed, texts.size()); ++i)
    text += (i == 0 ? "" : between) + texts[i];
  if (texts.size() > mostNamed) text += between + std::to_string(texts.size() - mostNamed) + " more";
  return text;
}

/// In words why a text can be no name; empty where it can.
std::string nameProblem(std::string_view typed) {
  if (typed.empty()) return "A name cannot be empty.";
  if (typed == "." || typed == "..") return "Each folder has its own entries \".\" and \"..\".";
  if (typed.find_first_of("/\\") != typed.npos) return "A name cannot hold \"/\" or \"\\\".";
  if (platform::releaseName(typed).find('\0') != std::string::npos)
    return "A name cannot hold a character that ends it.";
  return {};
}

std::string numbered(int number) {
  return number == 1 ? newFolder : newFolder + (" (" + std::to_string(number) + ")");
}

}  // namespace

FileDeeds::FileDeeds(runtime::Services services, std::string folder)
    : services_(services), folder_(std::move(folder)) {}

void FileDeeds::tell(const std::string& text) {
  services_.user.message(text, Buttons::Ok, Icon::Critical, errorTitle);
}

void FileDeeds::log(const std::string& done, const std::vector<std::string>& names) {
  services_.log.append(' ' + done + ": " + shownName(listed(names, ", ")));
}

void FileDeeds::logCopied(const std::vector<std::string>& names, const char* what) { log(what, names); }

std::string FileDeeds::rename(const std::string& name, std::string_view typed) {
  const std::string wanted = platform::holdName(platform::releaseName(typed));
  if (wanted == name) return {};
  std::string problem = nameProblem(typed);
  if (problem.empty()) {
    const int error =
        services_.system.files.moveFile(folder_ + name, folder_ + wanted, platform::Existing::Spared);
    if (error != 0) problem = error == EEXIST ? "There is an entry of that name." : reason(error) + '.';
  }
  if (!problem.empty()) {
    tell("Unable to rename '" + name + "' to '" + std::string(typed) + "'\r" + problem);
    return {};
  }
  services_.log.append(" Renamed: " + shownName(name) + " -> " + shownName(wanted));
  return wanted;
}

std::string FileDeeds::makeFolder() {
  int number = 1;
  int error = EEXIST;
  while (error == EEXIST)
    error = services_.system.files.createFolderExclusively(folder_ + numbered(number++), beforeUmask);
  if (error != 0) {
    tell("Unable to create a folder in '" + folder_ + "'\r" + reason(error) + '.');
    return {};
  }
  const std::string name = numbered(number - 1);
  log("Created folder", {folder_ + name});
  return name;
}

bool FileDeeds::agreed(const std::vector<std::string>& names) {
  const std::string what =
      names.size() == 1 ? "'" + names.front() + "'" : std::to_string(names.size()) + " entries";
  const std::string list = names.size() == 1 ? "" : "\r\r" + listed(names, "\r");
  return services_.user.message("Move " + what + " to the trash?" + list, Buttons::YesNo, Icon::Exclamation,
                                trashTitle, runtime::Consequence::TakesAway) == runtime::Answer::Yes;
}

JobEnd FileDeeds::moveToTrash(const std::vector<std::string>& names) {
  if (names.empty() || !agreed(names)) return JobEnd::Refused;
  std::vector<std::string> gone, left;
  for (const std::string& name : names) {
    services_.user.letEventsRun();
    if (services_.system.busy.stopRequested()) break;
    const std::string why = platform::moveToTrash(services_.system.drives, folder_ + name);
    why.empty() ? gone.push_back(name) : left.push_back(name + " (" + why + ')');
  }
  if (!gone.empty()) log("Moved to trash", gone);
  tellLeft(left, "moved to the trash");
  if (gone.size() + left.size() < names.size()) {
    services_.log.append(" Stopped: Moving to trash");
    return JobEnd::Stopped;
  }
  return left.empty() ? JobEnd::Done : gone.empty() ? JobEnd::Failed : JobEnd::Remarks;
}

void FileDeeds::tellLeft(const std::vector<std::string>& left, const std::string& what) {
  if (left.empty()) return;
  log("Not " + what, left);
  tell("Not " + what + ":\r\r" + listed(left, "\r"));
}

void FileDeeds::edit(const std::vector<std::string>& names) {
  std::vector<std::string> texts, paths, left;
  for (std::size_t i = 0; i < std::min(mostEdited, names.size()); ++i) {
    const std::string why = platform::noTextReason(services_.system.files, folder_ + names[i]);
    if (!why.empty()) {
      left.push_back(names[i] + " (" + why + ')');
      continue;
    }
    texts.push_back(names[i]);
    paths.push_back(folder_ + names[i]);
  }
  if (names.size() > mostEdited)
    left.push_back(std::to_string(names.size() - mostEdited) + " more (ten at a time)");
  if (!paths.empty() && platform::editTexts(services_.system.drives, services_.system.environment, paths))
    log("Opened in the text editor", texts);
  else if (!paths.empty())
    tell("No text editor of this desktop can be started.");
  tellLeft(left, "opened in the text editor");
}

std::size_t stemLength(std::string_view name) {
  const std::size_t dot = name.find_last_of('.');
  if (dot == name.npos || dot == 0) return name.size();
  const std::string_view stem = name.substr(0, dot);
  return dot > 4 && platform::lowerAscii(stem).ends_with(".tar") ? dot - 4 : dot;
}

}  // namespace browser
