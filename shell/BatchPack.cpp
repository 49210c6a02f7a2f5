#include "shell/BatchPack.h"

#include <set>

#include "archive/PackList.h"
#include "archive/TarSelection.h"
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
  std::set<std::string> seen;
  for (std::size_t i = 2; i < record.size(); ++i) {
    const std::string path = runtime::withTrailingBackslash(folder) + record[i];
    if (isPlainName(record[i]) && files.entryExists(path)) {
      if (seen.insert(path).second) found.paths.push_back(path);
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

int report(Program& program, const archive::PackResult& packed, bool allFound) {
  if (packed.end != runtime::JobEnd::Done) return 1;
  const int printed = print(program.system.drives.toHost(packed.path).value_or(packed.path) + '\n');
  return allFound ? printed : 1;
}

}  // namespace

archive::PackResult quickPack(Program& program, const archive::PackSelection& selection) {
  const platform::Busy::Scope busy(program.system.busy);
  archive::PackSettings settings;
  settings.outputPath =
      archive::proposedOutput(selection, archive::oneFolder(program.system.files, selection));
  settings.stageUsr8 = archive::usr8Support(program.settings.usr8());
  const std::string problem =
      applyOptions(program.packOptions, program.system.environment.get("SOURCE_DATE_EPOCH"), settings);
  if (!problem.empty()) {
    program.user.message(problem, runtime::Buttons::Ok, runtime::Icon::Critical);
    return {runtime::JobEnd::Refused, settings.outputPath};
  }
  if (!archive::selectionExists(program.services(), selection))
    return {runtime::JobEnd::Refused, settings.outputPath};
  return archive::PackJob(program.services(), selection, settings).run();
}

int batchPack(Program& program, const std::vector<std::string>& record, bool yes) {
  const auto& files = program.system.files;
  const platform::Busy::Scope busy(program.system.busy);
  const bool hasFolder = record.size() > 1 && !record[1].empty();
  if (!hasFolder || !files.folderExists(record[1])) {
    say(hasFolder ? "there is no folder " + platform::shownName(record[1])
                  : "-qpack needs a folder and names");
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
