#include "browser/Properties.h"

#include "browser/ModePass.h"
#include "browser/SelectedRows.h"
#include "runtime/LsLine.h"
#include "runtime/Stepper.h"

namespace browser {
namespace {

std::string titleOf(const std::string& name) { return name + " Properties"; }

std::string infoOf(const SelectionCounts& counts) {
  return std::to_string(counts.files) + " files, " + std::to_string(counts.folders) + " folders";
}

std::string modeStringOf(const runtime::Services& services, const std::string& folder,
                         const std::string& name) {
  const runtime::ToolResult run =
      services.api.RunCapture(services.cygwin.cygwinBin(), "ls.exe -lnd " + listedName(name), folder);
  return runtime::lsModeString(lineOf(run.text, name));
}

PropertiesRecord ofOne(const runtime::Services& services, const std::string& folder,
                       const std::string& path) {
  const std::string name = runtime::GetFileName(path);
  return {titleOf(name), "", folder, services.system.files.modifiedTime(path),
          modeStringOf(services, folder, name)};
}

/// What vanished meanwhile is neither; a link that leads nowhere is a file.
PropertiesRecord ofMany(const runtime::Services& services, const std::vector<std::string>& paths,
                        const std::string& folder) {
  const platform::Files& files = services.system.files;
  const auto goesOn = runtime::stepper(services);
  SelectionCounts counts;
  for (const std::string& path : paths) {
    if (!goesOn()) break;
    if (files.folderExists(path))
      ++counts.folders;
    else if (files.entryExists(path))
      ++counts.files;
  }
  return {"Properties", infoOf(counts), folder, {}, ""};
}

/// A row that is no existing folder is a file.
PropertiesRecord ofFolder(const runtime::Services& services, const std::string& folder,
                          const std::vector<std::string>& rows) {
  const auto goesOn = runtime::stepper(services);
  SelectionCounts counts;
  for (const std::string& row : rows) {
    if (!goesOn()) break;
    ++(services.system.files.folderExists(folder + row) ? counts.folders : counts.files);
  }
  const std::string path = runtime::withoutTrailingBackslash(folder);
  if (services.system.drives.isRoot(path)) return {titleOf(path), infoOf(counts), "", {}, ""};
  return {titleOf(runtime::GetFileName(path)), infoOf(counts), runtime::getFilePath(path), {}, ""};
}

}  // namespace

std::optional<PropertiesRecord> propertiesOf(const runtime::Services& services,
                                             const runtime::Selection& selection, const std::string& folder,
                                             const std::vector<std::string>& rows) {
  const platform::Busy::Scope busy(services.system.busy);
  const std::vector<std::string>& paths = selection.selectedPaths;
  PropertiesRecord record = paths.empty()       ? ofFolder(services, folder, rows)
                            : paths.size() == 1 ? ofOne(services, folder, paths.front())
                                                : ofMany(services, paths, folder);
  if (services.system.busy.stopRequested()) return std::nullopt;
  return record;
}

std::vector<std::string> itemsOf(const runtime::Selection& selection, const std::string& folder,
                                 const std::vector<std::string>& rows) {
  std::vector<std::string> items = selection.selectedPaths;
  if (!items.empty()) return items;
  items.reserve(rows.size());
  for (const std::string& row : rows) items.push_back(folder + row);
  return items;
}

}  // namespace browser
