#include "archive/PackList.h"

#include <algorithm>

#include "archive/PackedRoots.h"
#include "archive/ScratchFolder.h"
#include "platform/HeldName.h"
#include "platform/ResolvedPath.h"
#include "runtime/modAPI.h"

namespace archive {
namespace {

constexpr const char* homeName = "usr8";

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

/// An archive is never a member of itself, and what runs keep for themselves is none of anything.
void leaveOut(const platform::Files& files, NameList& list, const std::string& output) {
  const std::vector<std::string> paths = resolvedNames(files.drives(), list);
  const std::string archive = platform::resolvedPath(files.drives(), output);
  std::vector<std::string> kept;
  for (std::size_t i = 0; i < paths.size(); ++i)
    if (paths[i] != archive && !isScratchFolder(files, paths[i])) kept.push_back(std::move(list.names[i]));
  list.names = std::move(kept);
}

}  // namespace

bool insideUsr8(const PackSelection& selection) {
  return runtime::withTrailingBackslash(selection.currentFolder).ends_with("\\usr8\\");
}

bool oneFolder(const platform::Files& files, const PackSelection& selection) {
  return selection.selectedPaths.size() == 1 && files.folderExists(selection.selectedPaths.front());
}

NameList nameList(const platform::Files& files, const PackSettings& settings,
                  const PackSelection& selection) {
  const std::vector<std::string>& selected = selection.selectedPaths;
  const bool contents = settings.contentsOnly && oneFolder(files, selection);
  if (contents && isScratchFolder(files, selected.front())) return {selected.front(), {}, false, false};
  NameList list = selected.empty() ? wholeFolder(settings, selection)
                  : contents       ? contentsOf(files, settings, selection)
                                   : selectedItems(files.drives(), settings, selection);
  leaveOut(files, list, settings.outputPath);
  return list;
}

}  // namespace archive
