#include "archive/TarSelection.h"

namespace archive {
namespace {

bool wholeFolderAgreed(const runtime::Services& services, const std::string& folder) {
  return services.user.message(
             "This will create a tar file for all files and subdirectories under:\r" + folder,
             runtime::Buttons::OkCancel, runtime::Icon::None, "Warning..",
             runtime::Consequence::MakesSomethingNew) == runtime::Answer::Ok;
}

}  // namespace

bool selectionExists(const runtime::Services& services, const PackSelection& selection) {
  using runtime::Buttons;
  using runtime::Icon;
  for (const std::string& path : selection.selectedPaths) {
    if (services.system.files.entryExists(path)) continue;
    services.user.message("One or more selected files no longer exist\rTry clicking Refresh", Buttons::Ok,
                          Icon::Critical, "Unable to locate files");
    return false;
  }
  if (!selection.selectedPaths.empty() || services.system.files.folderExists(selection.currentFolder))
    return true;
  services.user.message("The selected directory no longer exists\rTry clicking Refresh", Buttons::Ok,
                        Icon::Critical, "Unable to locate path");
  return false;
}

std::optional<PackSelection> checkSelection(const runtime::Services& services, runtime::FilePane& pane) {
  PackSelection selection;
  selection.currentFolder = runtime::withoutTrailingBackslash(pane.GetDir1Path());
  selection.selectedPaths = pane.selectedPaths();
  if (!selectionExists(services, selection)) return std::nullopt;
  if (!selection.selectedPaths.empty()) return selection;
  selection.paneItems = pane.paneItems();
  if (!wholeFolderAgreed(services, selection.currentFolder)) return std::nullopt;
  pane.selectAllRows();
  return selection;
}

}  // namespace archive
