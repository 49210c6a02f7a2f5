#include "archive/Staging.h"

#include <algorithm>
#include <iterator>

#include "archive/PackProblem.h"
#include "platform/CopyAttributes.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

constexpr std::size_t longestCopyList = 100'000;  ///< bytes of a list on one command line

std::string withoutLineEnd(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text;
}

/// The path of a name of a list, which tools read from `folder`.
std::string pathOf(const std::string& folder, std::string_view name) {
  if (name.starts_with("./")) name.remove_prefix(2);
  const std::string below(runtime::withoutSlash(name));
  return runtime::withTrailingBackslash(folder) + runtime::withBackslashes(below);
}

std::string guarded(const std::string& name) { return name.starts_with('-') ? "./" + name : name; }

}  // namespace

Staging::Staging(const runtime::Services& services)
    : services_(services), scratch_(services.system.files, services.log, services.api.GetTempDir()) {}

bool Staging::copy(const NameList& list, bool insideUsr8) {
  if (!scratch_) return refuse(noTemporaryFolder(services_.system.files, scratch_.systemError()));
  findOthers(list.names, list.workingFolder);
  if (!insideUsr8) findOthers({"usr8"}, list.workingFolder);
  if (!makeFolder(tmpFolder())) return false;
  if (insideUsr8) return copyBelowUsr8(list);
  return copyNames(list.names, list.workingFolder, tmpFolder()) &&
         copyNames({"usr8"}, list.workingFolder, scratch_.path());
}

void Staging::findOthers(const std::vector<std::string>& names, const std::string& folder) {
  for (const std::string& name : names)
    std::ranges::copy(
        scratchFoldersBelow(services_.system.files, pathOf(folder, name), services_.system.busy.stop()),
        std::back_inserter(others_));
}

bool Staging::refuse(const std::string& problem) {
  problem_ = problem;
  return false;
}

bool Staging::makeFolder(const std::string& path) {
  if (services_.system.files.createFolder(path) == 0) return true;
  return refuse(cannotWrite(services_.system.files, scratch_.path()));
}

bool Staging::copyBelowUsr8(const NameList& list) {
  const std::string folder = scratch_.path() + "\\usr8";
  if (!makeFolder(folder) || !copyNames(list.names, list.workingFolder, folder)) return false;
  keepAttributes(list.workingFolder, folder);
  return true;
}

/// A folder that is made here is a member too: it keeps its own mode and time, not those of this run.
void Staging::keepAttributes(const std::string& from, const std::string& to) const {
  platform::copyModeAndOwner(services_.system.drives, from, to);
  platform::copyTimes(services_.system.drives, from, to);
}

bool Staging::holdsScratch(const std::string& folder) const {
  return std::any_of(others_.begin(), others_.end(), [&folder](const std::string& path) {
    return path.starts_with(folder) && path.size() > folder.size() && path[folder.size()] == '\\';
  });
}

bool Staging::copyNames(const std::vector<std::string>& names, const std::string& from,
                        const std::string& to) {
  std::string text;
  for (const std::string& name : names) {
    const std::string path = pathOf(from, name);
    if (std::find(others_.begin(), others_.end(), path) != others_.end()) continue;
    if (holdsScratch(path)) {
      if (!copyAround(name, from, to)) return false;
      continue;
    }
    text += quotedNames({name});
    if (text.size() < longestCopyList) continue;
    if (!runCopy(text, from, to)) return false;
    text.clear();
  }
  return text.empty() || runCopy(text, from, to);
}

/// A folder that holds a scratch folder is copied entry by entry.
bool Staging::copyAround(const std::string& name, const std::string& from, const std::string& to) {
  const std::string source = pathOf(from, name);
  const std::string target = pathOf(to, name);
  const auto entries = services_.system.files.entries(source);
  if (!entries) return refuse(copyFailed);
  if (!makeFolder(target)) return false;
  std::vector<std::string> names;
  for (const auto& entry : *entries) names.push_back(guarded(entry.name));
  if (!copyNames(names, source, target)) return false;
  keepAttributes(source, target);
  return true;
}

bool Staging::runCopy(const std::string& listText, const std::string& from, const std::string& to) {
  const std::string command = "cp -rpt " + runtime::ToCygwinPath(to) + " --preserve=links " + listText;
  const runtime::ToolResult run = services_.api.RunCapture(services_.cygwin.cygwinBin(), command, from,
                                                           runtime::mayChangeForAll({scratch_.path()}));
  if (run.stopped || services_.system.busy.stopRequested()) return false;
  if (run.good() && run.text.empty()) return true;
  const bool said = !run.text.empty() && run.text != runtime::startFailure;
  services_.log.append(" Unable to copy: " + (said ? withoutLineEnd(run.text) : howItEnded(run, "cp")));
  if (tellsOfFullDisk(run.text)) return refuse(diskFull(scratch_.path()));
  return refuse(std::string(copyFailed) + (run.good() ? "" : "\r" + howItEnded(run, "cp")));
}

}  // namespace archive
