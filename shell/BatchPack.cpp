#include "shell/BatchPack.h"

#include <iostream>

#include "platform/HeldName.h"
#include "shell/BatchTools.h"

namespace shell {
namespace {

struct NamedEntries {
  std::vector<std::string> paths;
  bool allFound = true;
};

NamedEntries findNamed(const platform::Files& files, const std::string& folder,
                       const std::vector<std::string>& record) {
  NamedEntries found;
  for (std::size_t i = 2; i < record.size(); ++i) {
    const std::string path = runtime::withTrailingBackslash(folder) + record[i];
    if (isPlainName(record[i]) && files.entryExists(path)) {
      found.paths.push_back(path);
    } else {
      found.allFound = false;
      say("no entry '" + platform::shownName(record[i]) + "' in " + platform::shownName(folder));
    }
  }
  return found;
}

std::vector<std::string> allNames(const platform::Files& files, const std::string& folder) {
  std::vector<std::string> names;
  if (const auto entries = files.entries(folder))
    for (const auto& entry : *entries) names.push_back(entry.name);
  return names;
}

int report(Program& program, const QuickPackResult& packed, bool allFound) {
  if (packed.outcome != archive::PackOutcome::Created) return 1;
  std::cout << program.system.drives.toHost(packed.outputPath).value_or(packed.outputPath) << '\n'
            << std::flush;
  return allFound && std::cout.good() ? 0 : 1;
}

}  // namespace

QuickPackResult quickPack(Program& program, const archive::PackSelection& selection) {
  const bool oneFolder = selection.selectedPaths.size() == 1 &&
                         program.system.files.folderExists(selection.selectedPaths.front());
  archive::PackSettings settings;
  settings.outputPath = archive::proposedOutput(selection, oneFolder);
  settings.stageUsr8 = archive::usr8Support(program.settings.usr8());
  archive::PackRunner runner(program.services());
  if (!runner.selectionExists(selection)) return {archive::PackOutcome::Refused, settings.outputPath};
  return {runner.create(settings, selection), settings.outputPath};
}

int batchPack(Program& program, const std::vector<std::string>& record, bool yes) {
  const auto& files = program.system.files;
  if (record.size() < 2 || !files.folderExists(record[1])) {
    say(record.size() < 2 ? "-qpack needs a folder and names"
                          : "there is no folder " + platform::shownName(record[1]));
    return 1;
  }
  archive::PackSelection selection;
  selection.currentFolder = runtime::withoutTrailingBackslash(record[1]);
  const bool whole = record.size() < 3;
  if (whole && !yes) {
    say("no names given; --yes before -qpack packs all that the folder holds");
    return 1;
  }
  NamedEntries named = findNamed(files, selection.currentFolder, record);
  if (!whole && named.paths.empty()) return 1;
  selection.selectedPaths = std::move(named.paths);
  if (whole) selection.paneItems = allNames(files, selection.currentFolder);
  prepareTools(program);
  return report(program, quickPack(program, selection), named.allFound);
}

}  // namespace shell
