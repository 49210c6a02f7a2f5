#include "archive/PackRunner.h"

#include <algorithm>

#include "archive/PackJob.h"
#include "platform/HeldName.h"
#include "platform/ResolvedPath.h"

namespace archive {
namespace {

using runtime::Answer;
using runtime::Buttons;
using runtime::Consequence;
using runtime::Icon;

constexpr const char* homeName = "usr8";

bool insideUsr8(const PackSelection& selection) {
  return runtime::withTrailingBackslash(selection.currentFolder).ends_with("\\usr8\\");
}

bool isRoot(const std::string& folder) { return runtime::GetFileName(folder).empty(); }

std::string parentOf(const std::string& folder) {
  const std::string parent = runtime::getFilePath(folder);
  const bool root = parent.size() == 3 && parent[1] == ':';
  return root ? parent : parent.substr(0, parent.size() - 1);
}

/// A name that no tool takes for an option.
std::string guarded(const std::string& name) { return name.starts_with('-') ? "./" + name : name; }

/// The path below the folder, or the path itself in the tools' form when it stands elsewhere.
std::string relativeName(const platform::DriveTable& drives, const std::string& folder,
                         const std::string& path) {
  const std::string prefix = runtime::withTrailingBackslash(folder);
  const bool below = path.size() > prefix.size() && path.substr(1, prefix.size() - 1) == prefix.substr(1) &&
                     drives.toHost(path.substr(0, prefix.size())) == drives.toHost(prefix);
  std::string name = below ? path.substr(prefix.size()) : runtime::ToCygwinPath(path);
  std::erase(name, '"');
  std::replace(name.begin(), name.end(), '\\', '/');
  return guarded(name);
}

/// By the bytes on disk, so that an archive does not depend on how it was selected.
void sortNames(std::vector<std::string>& names) {
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return platform::releaseName(a) < platform::releaseName(b);
  });
  names.erase(std::unique(names.begin(), names.end()), names.end());
}

/// Inside usr8 another usr8 is a folder like any other.
void addName(NameList& list, const std::string& name, const PackSettings& settings,
             const PackSelection& selection) {
  if (settings.stageUsr8 && !insideUsr8(selection) && name == homeName)
    list.usr8Found = true;
  else
    list.names.push_back(name);
}

NameList selectedItems(const platform::DriveTable& drives, const PackSettings& settings,
                       const PackSelection& selection) {
  NameList list;
  list.workingFolder = selection.currentFolder;
  list.usr8Found = insideUsr8(selection);
  for (const std::string& path : selection.selectedPaths) {
    const std::string name = relativeName(drives, selection.currentFolder, path);
    addName(list, name, settings, selection);
  }
  sortNames(list.names);
  return list;
}

/// Subfolders, then the rest, each sorted.
void addContents(const platform::Files& files, NameList& list, bool stage) {
  std::vector<std::string> others;
  const auto entries = files.entries(list.workingFolder);
  if (!entries) return;
  for (const auto& [name, isFolder] : *entries) {
    if (isFolder && stage && name == homeName)
      list.usr8Found = true;
    else
      (isFolder ? list.names : others).push_back(guarded(name));
  }
  sortNames(list.names);
  sortNames(others);
  list.names.insert(list.names.end(), others.begin(), others.end());
}

/// Inside usr8 another usr8 is a folder like any other.
NameList contentsOf(const platform::Files& files, const PackSettings& settings,
                    const PackSelection& selection) {
  NameList list;
  const bool stage = settings.stageUsr8 && !insideUsr8(selection);
  list.workingFolder = selection.selectedPaths.front();
  if (stage && runtime::GetFileName(list.workingFolder) == homeName) {
    list.workingFolder = parentOf(list.workingFolder);
    list.usr8Found = true;
    return list;
  }
  addContents(files, list, stage);
  return list;
}

/// All that the pane lists, with usr8 stored as it is when every row is selected. A root has no parent: it is
/// packed by its contents.
NameList wholeFolder(const PackSettings& settings, const PackSelection& selection) {
  NameList list;
  list.nothingSelected = true;
  list.workingFolder = selection.currentFolder;
  if (settings.parentFolder && !isRoot(selection.currentFolder)) {
    list.workingFolder = parentOf(selection.currentFolder);
    list.names.push_back(guarded(runtime::GetFileName(selection.currentFolder)) + '/');
    return list;
  }
  list.usr8Found = insideUsr8(selection);
  for (const std::string& name : selection.paneItems) addName(list, guarded(name), settings, selection);
  sortNames(list.names);
  return list;
}

/// An archive is never a member of itself.
void leaveOut(const platform::DriveTable& drives, NameList& list, const std::string& path) {
  const std::vector<std::string> paths = resolvedNames(drives, list);
  const auto at = std::find(paths.begin(), paths.end(), platform::resolvedPath(drives, path));
  if (at != paths.end()) list.names.erase(list.names.begin() + (at - paths.begin()));
}

bool mayReplace(runtime::UserInterface& user, const platform::Files& files, const std::string& path) {
  if (!files.entryExists(path)) return true;
  return user.message("'" + path + "' already exists.\rOverwrite?", Buttons::YesNo, Icon::None,
                      runtime::programTitle, Consequence::ReplacesSomething) == Answer::Yes;
}

/// Whether the run goes on; an append to a compressed archive becomes a new file when the user agrees.
bool settleMode(runtime::UserInterface& user, PackSettings& settings,
                const std::function<void()>& useNewFile) {
  if (!settings.append || settings.outputPath.ends_with("tar")) return true;
  if (user.message("Unable to append to a compressed tar archive\rCreate a new file instead?",
                   Buttons::OkCancel, Icon::None, "Unable to Append",
                   Consequence::MakesSomethingNew) != Answer::Ok)
    return false;
  settings.append = false;
  if (useNewFile) useNewFile();
  return true;
}

}  // namespace

std::string wholeOutputPath(const PackSettings& settings, const PackSelection& selection) {
  std::string path = settings.outputPath;
  std::replace(path.begin(), path.end(), '/', '\\');
  const bool whole = path.starts_with('\\') || (path.size() > 2 && path[1] == ':');
  return whole ? path : runtime::withTrailingBackslash(selection.currentFolder) + path;
}

NameList PackRunner::nameList(const PackSettings& settings, const PackSelection& selection) const {
  const std::vector<std::string>& selected = selection.selectedPaths;
  const bool contents =
      settings.contentsOnly && selected.size() == 1 && services_.system.files.folderExists(selected.front());
  NameList list = selected.empty() ? wholeFolder(settings, selection)
                  : contents       ? contentsOf(services_.system.files, settings, selection)
                                   : selectedItems(services_.system.drives, settings, selection);
  leaveOut(services_.system.drives, list, wholeOutputPath(settings, selection));
  return list;
}

PackOutcome PackRunner::create(PackSettings settings, const PackSelection& selection,
                               const std::function<void()>& useNewFile) {
  const auto kind = runtime::archiveKind(settings.outputPath);
  if (!kind || *kind == runtime::ArchiveKind::Ipk) {
    services_.user.message("Unrecognized Tar file extension", Buttons::Ok, Icon::Critical,
                           "Output file error..");
    return PackOutcome::UnknownExtension;
  }
  settings.outputPath = wholeOutputPath(settings, selection);
  if (services_.system.files.folderExists(settings.outputPath)) {
    services_.user.message("'" + settings.outputPath + "' is a folder", Buttons::Ok, Icon::Critical);
    return PackOutcome::Refused;
  }
  if (!mayReplace(services_.user, services_.system.files, settings.outputPath)) return PackOutcome::Refused;
  if (!settleMode(services_.user, settings, useNewFile)) return PackOutcome::Refused;
  NameList list = nameList(settings, selection);
  services_.cygwin.SetCygwinEnvironment();
  services_.api.SetCurDir(services_.cygwin.cygwinBin());
  const char mode = settings.append ? 'r' : 'c';
  PackJob job(services_, {settings, *kind, mode, std::move(list), insideUsr8(selection)});
  return job.run();
}

bool PackRunner::selectionExists(const PackSelection& selection) const {
  for (const std::string& path : selection.selectedPaths) {
    if (services_.system.files.entryExists(path)) continue;
    services_.user.message("One or more selected files no longer exist\rTry clicking Refresh", Buttons::Ok,
                           Icon::Critical, "Unable to locate files");
    return false;
  }
  if (!selection.selectedPaths.empty() || services_.system.files.folderExists(selection.currentFolder))
    return true;
  services_.user.message("The selected directory no longer exists\rTry clicking Refresh", Buttons::Ok,
                         Icon::Critical, "Unable to locate path");
  return false;
}

}  // namespace archive
