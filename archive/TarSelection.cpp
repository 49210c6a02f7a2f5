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

PackSelection packSelection(const runtime::FilePane& pane, bool whole) {
  PackSelection selection;
  selection.currentFolder = runtime::withoutTrailingBackslash(pane.GetDir1Path());
  if (!whole) selection.selectedPaths = pane.selectedPaths();
  if (selection.selectedPaths.empty()) selection.paneItems = pane.paneItems();
  return selection;
}

TarSelection checkSelection(const runtime::Services& services, runtime::FilePane& pane) {
  const PackSelection selection = packSelection(pane, false);
  if (!selectionExists(services, selection)) return TarSelection::Stopped;
  if (!selection.selectedPaths.empty()) return TarSelection::Selected;
  if (!wholeFolderAgreed(services, selection.currentFolder)) return TarSelection::Stopped;
  pane.selectAllRows();
  return TarSelection::WholeFolder;
}

}  // namespace archive
