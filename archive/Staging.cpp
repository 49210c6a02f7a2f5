#include "archive/Staging.h"

#include <ctime>

#include "platform/CopyAttributes.h"

namespace archive {
namespace {

constexpr std::size_t longestCopyList = 100'000;  ///< bytes of a list on one command line
constexpr int mostAttempts = 1000;

std::string timeOfDay() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[8] = "";
  std::strftime(text, sizeof text, "%H%M%S", &parts);
  return text;
}

std::string withoutLineEnd(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text;
}

}  // namespace

ScratchFolder::ScratchFolder(const platform::Files& files, runtime::Log& log, const std::string& base)
    : files_(files), log_(log) {
  const std::string stem = base + "_PK" + timeOfDay();
  for (int i = 0; i < mostAttempts; ++i) {
    const std::string path = stem + (i == 0 ? "" : "-" + std::to_string(i)) + ".tmp";
    if (files.createFolderExclusively(path)) {
      path_ = path;
      return;
    }
    if (!files.entryExists(path)) return;
  }
}

ScratchFolder::~ScratchFolder() {
  if (!path_.empty() && !files_.deleteTree(path_)) log_.append(" Unable to remove folder: " + path_);
}

Staging::Staging(const platform::System& system, runtime::modAPI& api,
                 const runtime::CygwinEnvironment& cygwin, runtime::Log& log)
    : system_(system), api_(api), cygwin_(cygwin), log_(log), scratch_(system.files, log, api.GetTempDir()) {}

bool Staging::copy(const NameList& list, bool insideUsr8) {
  if (!scratch_) {
    log_.append(" Unable to create a folder in: " + api_.GetTempDir());
    return false;
  }
  if (!makeFolder(tmpFolder())) return false;
  if (insideUsr8) return copyBelowUsr8(list);
  return copyNames(list.names, tmpFolder(), list.workingFolder) &&
         runCopy("usr8", scratch_.path(), list.workingFolder);
}

bool Staging::makeFolder(const std::string& path) {
  if (system_.files.createFolder(path)) return true;
  log_.append(" Unable to create folder: " + path);
  return false;
}

bool Staging::copyBelowUsr8(const NameList& list) {
  const std::string folder = scratch_.path() + "\\usr8";
  if (!makeFolder(folder) || !copyNames(list.names, folder, list.workingFolder)) return false;
  // The folder is a member too: it keeps its own mode and time, not those of this run.
  platform::copyModeAndOwner(system_.drives, list.workingFolder, folder);
  platform::copyTimes(system_.drives, list.workingFolder, folder);
  return true;
}

bool Staging::copyNames(const std::vector<std::string>& names, const std::string& folder,
                        const std::string& workingFolder) {
  std::string text;
  for (const std::string& name : names) {
    text += quotedNames({name});
    if (text.size() < longestCopyList) continue;
    if (!runCopy(text, folder, workingFolder)) return false;
    text.clear();
  }
  return text.empty() || runCopy(text, folder, workingFolder);
}

bool Staging::runCopy(const std::string& listText, const std::string& folder,
                      const std::string& workingFolder) {
  const std::string command = "cp -rpt " + runtime::ToCygwinPath(folder) + ' ' + listText;
  const std::string said = api_.RunCapture(cygwin_.cygwinBin(), command, workingFolder).text;
  if (said.empty()) return true;
  log_.append(said == runtime::startFailure ? " Unable to start: cp"
                                            : " Unable to copy: " + withoutLineEnd(said));
  return false;
}

}  // namespace archive
