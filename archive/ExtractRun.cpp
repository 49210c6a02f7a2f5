#include "archive/ExtractRun.h"

#include <algorithm>
#include <optional>

#include "archive/ExtractCommand.h"
#include "archive/ExtractRemains.h"
#include "archive/ListingLine.h"
#include "archive/NamesFile.h"
#include "archive/ScratchFolder.h"

namespace archive {
namespace {

bool beginsWithDash(const std::string& member) { return member.starts_with('-'); }

/// ar (binutils 2.40) ends well then.
bool lacksMember(std::string_view output) {
  return ("\n" + std::string(output)).find("\nno entry ") != std::string::npos;
}

}  // namespace

std::optional<std::string> excludeOptions(const std::vector<std::string>& excludes) {
  if (excludes.empty()) return "";
  std::string text = "--anchored --no-wildcards ";
  for (const std::string& exclude : excludes) text += "\"--exclude=" + exclude + "\" ";
  return text.size() <= longestNameList ? std::optional(text) : std::nullopt;
}

ExtractRun::ExtractRun(const runtime::Services& services, ExtractPlan plan)
    : services_(services), plan_(std::move(plan)) {}

runtime::ToolResult ExtractRun::run() {
  runtime::ToolResult run = plan_.kind == runtime::ArchiveKind::Ipk ? runAr() : runTar();
  logEnd(run);
  return run;
}

runtime::ToolResult ExtractRun::runTar() {
  std::optional<ScratchFolder> place;
  std::string list = excludeOptions(plan_.excludes).value_or("");
  if (!plan_.withWhatIsBelow) list += "--no-recursion ";
  std::string names = memberList(plan_.members);
  if (names.size() > longestNameList ||
      std::any_of(plan_.members.begin(), plan_.members.end(), beginsWithDash)) {
    place.emplace(services_.system.files, services_.log, services_.api.GetTempDir());
    const std::string file = place->path() + "\\names";
    if (!*place || !services_.system.files.writeText(file, namesFileText(plan_.members))) {
      services_.log.append(" Unable to write file: " + services_.api.GetTempDir() + "names");
      return {};
    }
    names = namesFileOptions(file);
  }
  return unpack(tarExtractCommand(plan_.kind, plan_.archivePath, plan_.outFolder, list + names));
}

runtime::ToolResult ExtractRun::unpack(const std::string& command) {
  ExtractRemains remains(services_, plan_.outFolder, plan_.replaceable);
  runtime::ToolResult run = services_.api.RunAndWait(command, {}, runtime::mayChange({plan_.outFolder}));
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
  runtime::ToolResult run = services_.api.RunAndWait(arExtractCommand(plan_.archivePath, plan_.members),
                                                     place.path(), runtime::mayChange({place.path()}));
  if (run.status == 0 && lacksMember(run.text)) run.status = 1;
  if (!run.ended() || moveIn(place.path())) return run;
  run.stopped = services_.system.busy.stopRequested();
  if (run.status == 0) run.status = 1;
  return run;
}

/// A rename puts a file in the place of a link, never behind it.
bool ExtractRun::moveIn(const std::string& from) {
  const platform::Files& files = services_.system.files;
  const auto entries = files.entries(from);
  bool all = entries.has_value();
  for (const auto& entry : entries.value_or(std::vector<platform::Files::Entry>())) {
    if (services_.system.busy.stopRequested()) return false;
    if (entry.name == ScratchFolder::lockName) continue;
    const std::string target = plan_.outFolder + entry.name;
    if (files.rename(from + '\\' + entry.name, target)) continue;
    services_.log.append(" Unable to write file: " + target);
    all = false;
  }
  return all;
}

void ExtractRun::logEnd(const runtime::ToolResult& run) {
  if (!services_.user.keepsConsole())
    for (const std::string_view line : completeLines(run.text))
      if (isRemark(line) || isArRemark(line)) services_.log.append(std::string(line));
  if (run.stopped) return;
  if (!run.ended()) {
    services_.log.append(' ' + howItEnded(run, plan_.kind == runtime::ArchiveKind::Ipk ? "ar" : "tar") +
                         ", not extracted whole: " + plan_.archivePath);
    return;
  }
  const std::string code = run.status == 0 ? "" : " (exit code " + std::to_string(run.status) + ")";
  services_.log.append(" Extracted file: " + plan_.archivePath + code);
}

}  // namespace archive
