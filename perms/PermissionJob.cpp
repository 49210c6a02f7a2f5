#include "perms/PermissionJob.h"

#include <unordered_set>

#include "perms/Executables.h"
#include "platform/FolderContents.h"
#include "runtime/IsExecutable.h"
#include "runtime/MissingTool.h"
#include "runtime/PathBatches.h"
#include "runtime/Stepper.h"

namespace perms {
namespace {

using runtime::JobEnd;

constexpr int signalled = 128;

}  // namespace

bool permissionToolFound(const runtime::Services& services, const char* tool) {
  return runtime::toolFound(services, tool, "Unable to Set Permissions");
}

bool agreesToWholeFolder(runtime::UserInterface& user, const std::string& folder) {
  return user.message("This will change permissions for all files and subdirectories under:\r" + folder,
                      runtime::Buttons::OkCancel, runtime::Icon::None, "Warning..",
                      runtime::Consequence::ReplacesSomething) == runtime::Answer::Ok;
}

PlannedItems planItems(const platform::Files& files, const PermissionItems& items,
                       const PermissionChoice& choice) {
  PlannedItems planned;
  for (const std::string& path : items.paths) {
    if (files.isLink(path)) {
      planned.links.push_back(path);
      continue;
    }
    const bool isFolder = files.folderExists(path);
    const bool byKind = items.selected && choice.automatic && !(isFolder && choice.subdirectories);
    planned.plans.push_back(
        planFor({path, isFolder, byKind && runtime::IsExecutable(files, path)}, choice, items.selected));
    planned.paths.push_back(path);
  }
  return planned;
}

std::optional<ModeChanges> previewChanges(const runtime::Services& services, const PermissionItems& items,
                                          const PermissionChoice& choice) {
  const auto goesOn = runtime::stepper(services);
  const platform::Files& files = services.system.files;
  const PlannedItems planned = planItems(files, items, choice);
  auto trees = treesOf(services, planned.paths, choice.subdirectories);
  if (!trees) return std::nullopt;
  for (std::size_t item = 0; item < trees->size(); ++item)
    if (decidesByKind(planned.plans[item])) markExecutables(files, (*trees)[item], goesOn);
  if (!goesOn()) return std::nullopt;
  return changesOf(std::move(*trees), planned.plans, platform::caller());
}

PermissionJob::PermissionJob(const runtime::Services& services, PermissionItems items,
                             PermissionChoice choice)
    : services_(services), items_(std::move(items)), choice_(choice) {}

PermissionResult PermissionJob::run() {
  planned_ = planItems(services_.system.files, items_, choice_);
  for (const std::string& link : planned_.links) services_.log.append(" Left out, it is a link: " + link);
  JobEnd end = JobEnd::Done;
  if (planned_.paths.empty() && !planned_.links.empty()) {
    end = JobEnd::Failed;
  } else if (auto trees = treesOf(services_, planned_.paths, choice_.subdirectories)) {
    trees_ = std::move(*trees);
    end = runItems();
  } else {
    end = services_.system.busy.stopRequested() ? JobEnd::Stopped : JobEnd::Failed;
    if (end == JobEnd::Failed) tell("Unable to Set Permissions");
  }
  logEnd(end);
  return {end, takeUndo(end == JobEnd::Done)};
}

void PermissionJob::tell(const std::string& text) const {
  services_.user.message(text, runtime::Buttons::Ok, runtime::Icon::Critical, "Error..");
}

void PermissionJob::logEnd(JobEnd end) const {
  if (end == JobEnd::Stopped)
    services_.log.append(" Stopped: setting permissions, after " +
                         std::to_string(begun_ == 0 ? 0 : begun_ - 1) + " of " +
                         std::to_string(planned_.paths.size()) + " items");
  services_.log.append((end == JobEnd::Done ? " Permissions" + choice_.text() + " set: "
                                            : " FAILED to set Permissions" + choice_.text() + ": ") +
                       items_.target());
}

JobEnd PermissionJob::runItems() {
  JobEnd end = JobEnd::Done;
  for (std::size_t item = 0; item < planned_.paths.size(); ++item) {
    begun_ = item + 1;
    services_.user.letEventsRun();
    const JobEnd one = runItem(item);
    if (one == JobEnd::Done) continue;
    end = one;
    if (items_.selected || one == JobEnd::Stopped) break;
  }
  return end;
}

JobEnd PermissionJob::runItem(std::size_t item) {
  std::string said;
  const Went went = runSteps(item, said);
  if (went == Went::Stopped) return JobEnd::Stopped;
  if (went == Went::On && said.empty()) return JobEnd::Done;
  tell(went == Went::NotStarted ? "Unable to Set Permissions" : said);
  return JobEnd::Failed;
}

PermissionJob::Went PermissionJob::runSteps(std::size_t item, std::string& said) {
  for (const PlanStep& step : planned_.plans[item].steps) {
    const Went went = runStep(step, item, said);
    if (went != Went::On) return went;
  }
  return Went::On;
}

PermissionJob::Went PermissionJob::runStep(const PlanStep& step, std::size_t item, std::string& said) {
  const std::string& path = planned_.paths[item];
  if (step.told == Told::Ignored) return setDirExecute(step, path, step.reach == Reach::EachFolder);
  if (step.reach == Reach::Executables) return runExecutables(step, item, said);
  std::string text;
  Went went = runTool(commandOf(step, path), text);
  if (step.told == Told::Shown && went != Went::Stopped) {
    services_.user.message("result = " + (went == Went::NotStarted ? runtime::startFailure : text),
                           runtime::Buttons::Ok, runtime::Icon::None);
    return lookIntoOpened(trees_[item]);
  }
  said += text;
  if (step.reach == Reach::Folders && went == Went::On) went = lookIntoOpened(trees_[item]);
  return went;
}

/// A tool that fails has something to say of it, and a silent failure is one all the same.
PermissionJob::Went PermissionJob::runTool(const std::string& command, std::string& said) const {
  const runtime::ToolResult run = services_.api.RunCapture(services_.cygwin.cygwinBin(), command, {},
                                                           runtime::mayChange({items_.folder}));
  if (run.stopped) return Went::Stopped;
  if (run.text == runtime::startFailure) return Went::NotStarted;
  said += run.text;
  if (!run.good() && (run.text.empty() || run.status > signalled))
    said += runtime::howItEnded(run, command.substr(0, command.find_first_of(". ")));
  return Went::On;
}

/// Each folder is made enterable before it is looked into.
PermissionJob::Went PermissionJob::setDirExecute(const PlanStep& step, const std::string& folder,
                                                 bool recurse) const {
  const PlanStep single{Reach::Item, step.mode, step.told};
  std::vector<std::string> pending = {folder};
  while (!pending.empty()) {
    const std::string path = std::move(pending.back());
    pending.pop_back();
    std::string ignored;
    if (runTool(commandOf(single, path), ignored) == Went::Stopped) return Went::Stopped;
    const auto contents = recurse ? platform::contentsOf(services_.system.drives, path) : std::nullopt;
    if (!contents) continue;
    for (auto name = contents->folders.rbegin(); name != contents->folders.rend(); ++name)
      pending.push_back(path + '\\' + *name);
  }
  return Went::On;
}

PermissionJob::Went PermissionJob::runExecutables(const PlanStep& step, std::size_t item, std::string& said) {
  const auto executables =
      findExecutables(services_.system.files, planned_.paths[item], runtime::stepper(services_));
  if (services_.system.busy.stopRequested()) return Went::Stopped;
  const std::unordered_set<std::string_view> found(executables.begin(), executables.end());
  for (TreeEntry& entry : trees_[item]) entry.isExecutable = found.contains(entry.path);
  for (const std::string& batch : runtime::pathBatches(executables, runtime::asManyAsFit)) {
    const Went went = runTool(commandOf(step, "") + batch, said);
    if (went != Went::On) return went;
  }
  return Went::On;
}

/// What lies in folders that could not be read before has its old modes still: the folders alone were
/// changed.
PermissionJob::Went PermissionJob::lookIntoOpened(ItemTree& tree) const {
  std::vector<std::string> closed;
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < tree.size(); ++i)
    if (tree[i].closed) {
      closed.push_back(tree[i].path);
      places.push_back(i);
    }
  if (closed.empty()) return Went::On;
  auto trees = treesOf(services_, closed, true);
  if (!trees) return services_.system.busy.stopRequested() ? Went::Stopped : Went::On;
  for (std::size_t i = 0; i < trees->size(); ++i)
    for (TreeEntry& entry : (*trees)[i])
      if (entry.isItem)
        tree[places[i]].closed = entry.closed;
      else
        tree.push_back(std::move(entry));
  return Went::On;
}

PermissionUndo PermissionJob::takeUndo(bool whole) {
  trees_.resize(std::min(trees_.size(), begun_));
  const auto effects = effectsOf(trees_, planned_.plans, platform::caller());
  PermissionUndo undo{items_.folder, {}, whole};
  for (std::size_t item = 0; item < trees_.size(); ++item) undo.add(trees_[item], effects[item]);
  return undo;
}

}  // namespace perms
