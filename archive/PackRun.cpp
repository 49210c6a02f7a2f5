#include "archive/PackRun.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <set>
#include <string_view>

#include "archive/ExtractExcludes.h"
#include "archive/ListingLine.h"
#include "archive/NamesFile.h"
#include "archive/PackProblem.h"
#include "archive/Staging.h"
#include "platform/CopyAttributes.h"
#include "platform/NewestTime.h"
#include "platform/ResolvedPath.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

using runtime::Buttons;
using runtime::Icon;
using runtime::JobEnd;

constexpr int filesChanged = 1;  ///< tar's status when a file changed while it was read
constexpr int fatalError = 2;

/// GNU tar 1.34 repeats a time that it was given.
constexpr std::string_view echoedTime = "tar: Option --mtime: Treating date ";

/// What GNU tar 1.34 says of things that no archive can hold.
constexpr std::string_view tarSays = "tar: ";
constexpr std::array<std::string_view, 3> ignored = {": socket ignored", ": door ignored",
                                                     ": Unknown file type; file ignored"};

/// tar puts a backslash in front of a name's colons there.
std::string nameInRemark(std::string_view remark) {
  std::string printed;
  for (const char c : remark.substr(tarSays.size())) {
    if (c == ':' && printed.ends_with('\\')) printed.pop_back();
    printed += c;
  }
  return heldName(printed);
}

constexpr const char* missingFiles =
    "Error: Unable to locate necessary program files.\rTry reinstalling the application";
constexpr const char* unknownError = "Error: An unknown error occurred.\rTry reinstalling Pakrune or Cygwin";
constexpr const char* failedPrompt =
    "Error: Unable to run necessary program files.\r\r"
    "If Cygwin is installed, make sure that the 'tar' package was also installed.\r"
    "Otherwise, try reinstalling Pakrune\r\rThe command that attempted to run is below:";

}  // namespace

PackRun::PackRun(const runtime::Services& services, PackPlan plan)
    : services_(services),
      plan_(std::move(plan)),
      roots_(packedRoots(services_.system.drives, plan_.list, staged(), plan_.insideUsr8)),
      end_(platform::linkEnd(services_.system.drives, target())) {}

JobEnd PackRun::run() {
  const std::string folder = runtime::getFilePath(end_);
  if (plan_.list.names.empty() && !staged()) return refuse(nothingToPack(plan_.list.workingFolder));
  if (const int problem = services_.system.files.writeProblem(folder); problem != 0)
    return refuse(cannotWrite(folder, problem));
  if (plan_.settings.newestTime && !settleTime()) return JobEnd::Stopped;
  std::optional<Staging> staging;
  if (staged()) {
    staging.emplace(services_);
    const bool copied = staging->copy(plan_.list, plan_.insideUsr8);
    if (stopWanted()) return JobEnd::Stopped;
    if (!copied) return fail(staging->problem());
  }
  const bool ready = openPlace() && writeList();
  if (stopWanted()) return JobEnd::Stopped;
  if (!ready) return fail(problem_);
  const std::string command = tarCommand(plan_.settings, plan_.kind, plan_.mode, plan_.list, listText_,
                                         staging ? staging->tmpFolder() : "", file_);
  const runtime::ToolResult run =
      services_.api.RunAndWait(view(), command, {}, runtime::mayChangeForAll({place_->path()}));
  staging.reset();
  return finish(run, command);
}

JobEnd PackRun::refuse(const std::string& problem) {
  services_.user.message(problem, Buttons::Ok, Icon::Critical);
  return JobEnd::Refused;
}

JobEnd PackRun::fail(const std::string& problem) {
  services_.log.append(" Unable to write file: " + target());
  services_.user.message(problem, Buttons::Ok, Icon::Critical);
  return JobEnd::Failed;
}

/// What stands on disk before this run makes anything. False: stopped.
bool PackRun::settleTime() {
  const platform::DriveTable& drives = services_.system.drives;
  std::vector<std::string> paths;
  for (const PackedRoot& root : roots_) paths.push_back(drives.toHost(root.path).value_or(""));
  const std::string output = drives.toHost(platform::resolvedPath(drives, end_)).value_or("");
  plan_.settings.time =
      platform::newestTime(paths, services_.system.busy.stop(),
                           [&](const std::string& path) { return path == output || isScratchOnHost(path); });
  return !stopWanted();
}

/// Beside the output where that is not packed: then a rename is enough, whatever the size. A staged run
/// packs its own copies, so every place is free.
bool PackRun::openPlace() {
  const platform::Files& files = services_.system.files;
  const std::string folder = runtime::getFilePath(end_);
  if (staged() || memberName(roots_, platform::resolvedPath(services_.system.drives, folder + "_PK")).empty())
    place_.emplace(files, services_.log, folder);
  if (!place_ || !*place_) place_.emplace(files, services_.log, services_.api.GetTempDir());
  if (!*place_) {
    problem_ = noTemporaryFolder(files, place_->systemError());
    return false;
  }
  file_ = place_->path() + '\\' + runtime::GetFileName(target());
  return plan_.mode != 'r' || !files.fileExists(target()) || copyEarlier();
}

/// What is appended to is a copy.
bool PackRun::copyEarlier() {
  const platform::Files& files = services_.system.files;
  const int error = files.copyFile(target(), file_, services_.system.busy.stop());
  if (error == 0) return true;
  const bool noRoom = error == ENOSPC || error == EDQUOT || error == EFBIG;
  problem_ = noRoom ? cannotWrite(place_->path(), error) : cannotCopy(target());
  return false;
}

/// The output, and the scratch folders of this run and of others, stay out of the folders that hold them.
std::vector<std::string> PackRun::ownThings() const {
  std::vector<std::string> paths = {target()};
  if (end_ != target()) paths.push_back(end_);
  if (staged()) return paths;  // what tar reads then is a copy without the rest
  for (const PackedRoot& root : roots_)
    std::ranges::copy(scratchFoldersBelow(services_.system.files, root.path, services_.system.busy.stop()),
                      std::back_inserter(paths));
  return paths;
}

std::string PackRun::exclusions() const {
  std::vector<std::string> members;
  for (const std::string& path : ownThings()) {
    std::string member = memberName(roots_, platform::resolvedPath(services_.system.drives, path));
    if (!member.empty()) members.push_back(std::move(member));
  }
  return excludeOptions(members);
}

bool PackRun::writeList() {
  const bool allBelowUsr8 = staged() && plan_.insideUsr8;
  const std::string names = allBelowUsr8 ? "" : quotedNames(plan_.list.names);
  listText_ = exclusions();
  if (names.size() <= longestNameList) {
    listText_ += names;
    return true;
  }
  const std::string namesFile = place_->path() + "\\names";
  listText_ += namesFileOptions(namesFile);
  if (services_.system.files.writeText(namesFile, namesFileText(plan_.list.names))) return true;
  problem_ = cannotWrite(services_.system.files, place_->path());
  return false;
}

/// The command as a person would type it: without staging, and with the archive's own name.
std::string PackRun::statedCommand() const {
  return tarCommand(plan_.settings, plan_.kind, plan_.mode, plan_.list, quotedNames(plan_.list.names), "",
                    target());
}

runtime::VisibleRun PackRun::view() const {
  return {(plan_.mode == 'r' ? "Appending to " : "Creating ") + runtime::GetFileName(target()), 0,
          [this] { return services_.system.files.fileSize(file_).value_or(0); }};
}

JobEnd PackRun::finish(const runtime::ToolResult& run, const std::string& command) {
  if (run.stopped || stopWanted()) return JobEnd::Stopped;
  logRemarks(run);
  if (run.status != 0 && run.status != filesChanged) {
    reportFailure(run, command);
    return JobEnd::Failed;
  }
  if (!services_.system.files.fileExists(file_)) return JobEnd::Failed;
  if (const int error = moveToTarget(); error != 0) return notMoved(error);
  if (run.status == 0) {
    services_.log.append(" Created file: " + target());
    const std::vector<std::string> lacking = leftOut(run);
    for (const std::string& name : lacking) services_.log.append(" Not packed: " + name);
    return lacking.empty() ? JobEnd::Done : JobEnd::Remarks;
  }
  services_.log.append(" Archive kept, though files changed while they were read: " + target());
  services_.user.message(unknownError, Buttons::Ok, Icon::None);
  return JobEnd::Failed;
}

/// The archive keeps mode and owner of the one that it replaces. 0, or the system's error.
int PackRun::moveToTarget() {
  const platform::Files& files = services_.system.files;
  if (plan_.replaces && files.fileExists(end_))
    platform::copyModeAndOwner(services_.system.drives, end_, file_);
  const auto existing = plan_.replaces ? platform::Existing::Replaced : platform::Existing::Spared;
  return files.moveFile(file_, end_, existing, services_.system.busy.stop());
}

JobEnd PackRun::notMoved(int systemError) {
  if (systemError == ECANCELED) return JobEnd::Stopped;
  const bool lostRace = systemError == EEXIST && !plan_.replaces;
  return fail(lostRace ? appearedMeanwhile(target()) : cannotWrite(runtime::getFilePath(end_), systemError));
}

void PackRun::reportFailure(const runtime::ToolResult& run, const std::string& command) {
  const bool earlier = services_.system.files.entryExists(target());
  const bool full =
      tellsOfFullDisk(run.text) || services_.system.files.writeProblem(place_->path()) == ENOSPC;
  if (!run.ended()) services_.log.append(' ' + howItEnded(run, "tar"));
  if (run.status == fatalError) services_.log.append(" Failed command: " + command);
  services_.log.append(" Partial archive removed" +
                       std::string(earlier ? ", the earlier file is unchanged: " : ": ") + target());
  if (full)
    services_.user.message(diskFull(runtime::getFilePath(place_->path())), Buttons::Ok, Icon::Critical);
  else if (run.status == platform::notStarted)
    services_.user.message(missingFiles, Buttons::Ok, Icon::Critical);
  else if (run.status == fatalError)
    showFailedCommand();
  else
    services_.user.message(unknownError, Buttons::Ok, Icon::None);
}

void PackRun::showFailedCommand() {
  services_.user.showCommand(std::string(runtime::programTitle) + ": Error", failedPrompt, statedCommand());
}

void PackRun::logRemarks(const runtime::ToolResult& run) {
  if (services_.user.keepsConsole()) return;  // they can still be read there
  for (const std::string_view line : completeLines(run.text))
    if (isRemark(line) && !isName(line) && !line.starts_with(echoedTime))
      services_.log.append(std::string(line));
}

/// A line of tar names what it packs, and a name may look like a remark.
bool PackRun::isName(std::string_view line) const {
  const std::string name = heldName(line);
  return std::any_of(roots_.begin(), roots_.end(), [&](const PackedRoot& root) {
    const bool below = name.starts_with(root.member + '/');
    if (!below && name != root.member) return false;
    const std::string rest = runtime::withBackslashes(name.substr(root.member.size()));
    return services_.system.files.entryExists(root.path + rest);
  });
}

/// What was chosen and tar passed over, which ends well.
std::vector<std::string> PackRun::leftOut(const runtime::ToolResult& run) const {
  std::set<std::string> passedOver;
  for (const std::string_view line : completeLines(run.text))
    for (const std::string_view reason : ignored)
      if (line.starts_with(tarSays) && line.ends_with(reason) && !isName(line))
        passedOver.insert(nameInRemark(line.substr(0, line.size() - reason.size())));
  std::vector<std::string> names;
  for (const PackedRoot& root : roots_)
    if (passedOver.count(root.member) > 0) names.push_back(root.member);
  return names;
}

}  // namespace archive
