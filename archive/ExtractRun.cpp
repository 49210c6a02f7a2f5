#include "archive/ExtractRun.h"

#include <algorithm>
#include <optional>

#include "archive/ExtractCommand.h"
#include "archive/ExtractExcludes.h"
#include "archive/ExtractPackage.h"
#include "archive/ExtractRemains.h"
#include "archive/ListingLine.h"
#include "archive/NamesFile.h"
#include "archive/PackProblem.h"
#include "archive/ScratchFolder.h"
#include "platform/CompressorWords.h"

namespace archive {
namespace {

/// On a command line it would be taken for an option or for a path on disk.
bool isMisread(const std::string& member) { return member.starts_with('-') || readsAsPath(member); }

/// ar (binutils 2.40) ends well then.
bool lacksMember(std::string_view output) {
  return ("\n" + std::string(output)).find("\nno entry ") != std::string::npos;
}

}  // namespace

ExtractRun::ExtractRun(const runtime::Services& services, ExtractPlan plan)
    : services_(services), plan_(std::move(plan)) {}

runtime::ToolResult ExtractRun::run() {
  runtime::ToolResult run = plan_.kind == runtime::ArchiveKind::Ipk ? runAr() : runTar();
  logEnd(run);
  return run;
}

runtime::ToolResult ExtractRun::runTar() {
  std::string list;
  if (!exclusions(list)) return {};
  list += spareOptions(plan_.spared, plan_.withWhatIsBelow);
  if (!plan_.withWhatIsBelow) list += "--no-recursion ";
  const auto names = members();
  if (!names) return {};
  return unpack(tarExtractCommand(plan_.kind, plan_.archivePath, plan_.outFolder, list + *names));
}

/// nullopt: they could not be written, which the log tells.
std::optional<std::string> ExtractRun::members() {
  const std::string names = memberList(plan_.members);
  if (names.size() <= longestNameList && std::ranges::none_of(plan_.members, isMisread)) return names;
  if (!writeFile("names", namesFileText(plan_.members))) return std::nullopt;
  return namesFileOptions(place_->path() + "\\names");
}

bool ExtractRun::exclusions(std::string& options) {
  options = excludeOptions(plan_.excludes);
  if (options.size() <= longestNameList && std::ranges::none_of(plan_.excludes, readsAsPath)) return true;
  const ExcludeFiles files = excludeFiles(plan_.excludes);
  if (!writeFile("excludes", files.names) || !writeFile("patterns", files.patterns)) return false;
  options = excludeFileOptions(place_->path() + "\\excludes", place_->path() + "\\patterns");
  return true;
}

bool ExtractRun::writeFile(const std::string& name, const std::string& bytes) {
  if (!place_) place_.emplace(services_.system.files, services_.log, services_.api.GetTempDir());
  if (*place_ && services_.system.files.writeText(place_->path() + '\\' + name, bytes)) return true;
  const platform::Files& files = services_.system.files;
  std::string problem =
      *place_ ? cannotWrite(files, place_->path()) : noTemporaryFolder(files, place_->systemError());
  std::ranges::replace(problem, '\r', ' ');
  services_.log.append(' ' + problem);
  return false;
}

runtime::ToolResult ExtractRun::unpack(const std::string& command) {
  ExtractRemains remains(services_, plan_.outFolder, plan_.replaceable);
  runtime::ToolResult run =
      services_.api.RunAndWait(view(), command, {}, runtime::mayChange({plan_.outFolder}));
  if (run.status != platform::notStarted && !run.ended()) remains.clear(run.text);
  return run;
}

/// ar has no folder option and follows links that stand in its way: it unpacks into a folder of its own.
runtime::ToolResult ExtractRun::runAr() {
  const ScratchFolder place(services_.system.files, services_.log, plan_.outFolder);
  if (!place) {
    services_.log.append(" Unable to create a folder in: " + plan_.outFolder);
    return {};
  }
  platform::Environment& environment = services_.system.environment;
  const std::string tools = ";" + services_.cygwin.cygwinBin();
  if (!environment.get("Path").ends_with(tools)) environment.set("Path", environment.get("Path") + tools);
  for (const std::string& folder : plan_.wholly.value_or(std::vector<std::string>()))
    services_.system.files.createFolder(place.path() + '\\' + folder);
  const std::vector<std::string> named = plan_.wholly ? std::vector<std::string>() : plan_.members;
  runtime::ToolResult run = services_.api.RunAndWait(view(), arExtractCommand(plan_.archivePath, named),
                                                     place.path(), runtime::mayChange({place.path()}));
  if (run.status == 0 && lacksMember(run.text)) run.status = 1;
  if (!run.ended()) return run;
  const PackageMove move(services_, place.path(), plan_.outFolder);
  if (plan_.wholly ? move.some(plan_.members) : move.all()) return run;
  run.stopped = services_.system.busy.stopRequested();
  if (run.status == 0) run.status = 1;
  return run;
}

runtime::VisibleRun ExtractRun::view() const {
  return {"Extracting " + runtime::GetFileName(plan_.archivePath), plan_.count, {}, plan_.counted};
}

/// A member may look like a remark. Of a missing end the job tells itself.
bool ExtractRun::isToBeLogged(std::string_view line) const {
  if (plan_.kind == runtime::ArchiveKind::Ipk) return isArRemark(line);
  return isRemark(line) && line != platform::tarEndMissing && plan_.likeRemarks.count(heldName(line)) == 0;
}

void ExtractRun::logEnd(const runtime::ToolResult& run) {
  if (!services_.user.keepsConsole())
    for (const std::string_view line : completeLines(run.text))
      if (isToBeLogged(line)) services_.log.append(std::string(line));
  if (run.stopped) return;
  if (!run.ended()) {
    services_.log.append(' ' + howItEnded(run, plan_.kind == runtime::ArchiveKind::Ipk ? "ar" : "tar") +
                         ", not extracted whole: " + plan_.shownAs);
    return;
  }
  const std::string code = run.status == 0 ? "" : " (exit code " + std::to_string(run.status) + ")";
  services_.log.append(" Extracted file: " + plan_.shownAs + code);
}

}  // namespace archive
