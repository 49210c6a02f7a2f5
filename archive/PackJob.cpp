#include "archive/PackJob.h"

#include <string_view>

#include "archive/ListingLine.h"
#include "archive/NamesFile.h"
#include "platform/CopyAttributes.h"
#include "platform/ResolvedPath.h"

namespace archive {
namespace {

using runtime::Buttons;
using runtime::Icon;

constexpr int filesChanged = 1;  ///< tar's status when a file changed while it was read
constexpr int fatalError = 2;

constexpr const char* missingFiles =
    "Error: Unable to locate necessary program files.\rTry reinstalling the application";
constexpr const char* unknownError = "Error: An unknown error occurred.\rTry reinstalling Pakrune or Cygwin";
constexpr const char* failedPrompt =
    "Error: Unable to run necessary program files.\r\r"
    "If Cygwin is installed, make sure that the 'tar' package was also installed.\r"
    "Otherwise, try reinstalling Pakrune\r\rThe command that attempted to run is below:";

}  // namespace

PackJob::PackJob(const runtime::Services& services, PackPlan plan)
    : services_(services),
      plan_(std::move(plan)),
      roots_(packedRoots(services_.system.drives, plan_.list, staged(), plan_.insideUsr8)) {}

PackOutcome PackJob::run() {
  std::optional<Staging> staging;
  if (staged()) {
    staging.emplace(services_.system, services_.api, services_.cygwin, services_.log);
    if (!staging->copy(plan_.list, plan_.insideUsr8)) return PackOutcome::Failed;
  }
  if (!openPlace() || !writeList()) return refuseToWrite();
  const std::string command = tarCommand(plan_.settings, plan_.kind, plan_.mode, plan_.list, listText_,
                                         staging ? staging->tmpFolder() : "", file_);
  const runtime::ToolResult run = services_.api.RunAndWait(command);
  staging.reset();
  return finish(run, command);
}

/// Beside the output where that is not packed: then a rename is enough, whatever the size. A staged run
/// packs its own copies, so every place is free.
bool PackJob::openPlace() {
  const platform::Files& files = services_.system.files;
  const std::string folder = runtime::getFilePath(target());
  if (!files.folderExists(folder)) return false;
  if (staged() || memberName(roots_, platform::resolvedPath(services_.system.drives, folder + "_PK")).empty())
    place_.emplace(files, services_.log, folder);
  if (!place_ || !*place_) place_.emplace(files, services_.log, services_.api.GetTempDir());
  if (!*place_) return false;
  file_ = place_->path() + '\\' + runtime::GetFileName(target());
  const bool appends = plan_.mode == 'r' && files.fileExists(target());
  return !appends || files.copyFile(target(), file_);
}

/// The output, and the place where no free one was found, stay out of the folders that hold them.
std::string PackJob::exclusions() const {
  std::string text;
  for (const std::string& path : {target(), place_->path()}) {
    const std::string member = memberName(roots_, platform::resolvedPath(services_.system.drives, path));
    if (!member.empty()) text += "\"--exclude=" + member + "\" ";
  }
  return text.empty() ? text : "--anchored --no-wildcards " + text;
}

bool PackJob::writeList() {
  const bool allBelowUsr8 = staged() && plan_.insideUsr8;
  const std::string names = allBelowUsr8 ? "" : quotedNames(plan_.list.names);
  listText_ = exclusions();
  if (names.size() <= longestNameList) {
    listText_ += names;
    return true;
  }
  const std::string namesFile = place_->path() + "\\names";
  listText_ += namesFileOptions(namesFile);
  return services_.system.files.writeText(namesFile, namesFileText(plan_.list.names));
}

/// The command as a person would type it: without staging, and with the archive's own name.
std::string PackJob::statedCommand() const {
  return tarCommand(plan_.settings, plan_.kind, plan_.mode, plan_.list, quotedNames(plan_.list.names), "",
                    target());
}

/// The archive keeps mode and owner of the one that it replaces.
bool PackJob::moveToTarget() {
  const platform::Files& files = services_.system.files;
  if (files.fileExists(target())) platform::copyModeAndOwner(services_.system.drives, target(), file_);
  return files.rename(file_, target()) || files.copyFile(file_, target());
}

PackOutcome PackJob::finish(const runtime::ToolResult& run, const std::string& command) {
  if (run.status != 0 && run.status != filesChanged) {
    reportFailure(run, command);
    return PackOutcome::Failed;
  }
  if (!services_.system.files.fileExists(file_)) return PackOutcome::Failed;
  if (!moveToTarget()) return refuseToWrite();
  if (run.status == 0) {
    services_.log.append(" Created file: " + target());
    return PackOutcome::Created;
  }
  logRemarks(run);
  services_.log.append(" Archive kept, though files changed while they were read: " + target());
  services_.user.message(unknownError, Buttons::Ok, Icon::None);
  return PackOutcome::Failed;
}

PackOutcome PackJob::refuseToWrite() {
  services_.log.append(" Unable to write file: " + target());
  showFailedCommand();
  return PackOutcome::Failed;
}

void PackJob::reportFailure(const runtime::ToolResult& run, const std::string& command) {
  const bool earlier = services_.system.files.entryExists(target());
  logRemarks(run);
  if (run.status == fatalError) services_.log.append(" Failed command: " + command);
  services_.log.append(" Partial archive removed" +
                       std::string(earlier ? ", the earlier file is unchanged: " : ": ") + target());
  if (run.status == platform::notStarted)
    services_.user.message(missingFiles, Buttons::Ok, Icon::Critical);
  else if (run.status == fatalError)
    showFailedCommand();
  else
    services_.user.message(unknownError, Buttons::Ok, Icon::None);
}

void PackJob::showFailedCommand() {
  services_.user.showCommand(std::string(runtime::programTitle) + ": Error", failedPrompt, statedCommand());
}

void PackJob::logRemarks(const runtime::ToolResult& run) {
  for (const std::string_view line : completeLines(run.text))
    if (isRemark(line)) services_.log.append(std::string(line));
}

}  // namespace archive
