#include "browser/SelectedRows.h"

#include <unordered_set>

namespace browser {
namespace {

constexpr std::size_t fewNames = 100;

/// Many names: one look at the folder is cheaper than a look at every entry.
std::size_t countFolders(const platform::Files& files, const std::string& folder,
                         const std::vector<std::string>& names) {
  std::size_t count = 0;
  if (names.size() <= fewNames) {
    for (const std::string& name : names) count += files.folderExists(folder + name) ? 1U : 0U;
    return count;
  }
  std::unordered_set<std::string> folders;
  if (const auto entries = files.entries(folder))
    for (const auto& entry : *entries)
      if (entry.isFolder) folders.insert(entry.name);
  for (const std::string& name : names) count += folders.count(name);
  return count;
}

}  // namespace

SelectionCounts rebuildSelection(runtime::Selection& selection, const platform::Files& files,
                                 const std::string& folder, const std::vector<std::string>& names) {
  selection = {};
  for (const std::string& name : names) selection.selectedPaths.push_back(folder + name);
  SelectionCounts counts;
  counts.folders = countFolders(files, folder, names);
  counts.files = names.size() - counts.folders;
  return counts;
}

std::string summaryText(const SelectionCounts& counts) {
  return std::to_string(counts.files + counts.folders) + " items (" + std::to_string(counts.files) +
         " files, " + std::to_string(counts.folders) + " folders)";
}

}  // namespace browser
