#include "browser/SelectedRows.h"

namespace browser {
namespace {

constexpr std::size_t few = 100;

}  // namespace

SelectionCounts rebuildSelection(runtime::Selection& selection, const platform::Files& files,
                                 const std::string& folder, const std::vector<SelectedEntry>& entries) {
  selection = {};
  selection.selectedPaths.reserve(entries.size());
  SelectionCounts counts;
  for (const SelectedEntry& entry : entries) {
    const std::string& path = selection.selectedPaths.emplace_back(folder + entry.name);
    const bool isFolder = entries.size() > few ? entry.isFolder : files.folderExists(path);
    ++(isFolder ? counts.folders : counts.files);
  }
  return counts;
}

std::string summaryText(const SelectionCounts& counts) {
  return std::to_string(counts.files + counts.folders) + " items (" + std::to_string(counts.files) +
         " files, " + std::to_string(counts.folders) + " folders)";
}

}  // namespace browser
