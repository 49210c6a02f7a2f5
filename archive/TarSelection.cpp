#include "archive/TarSelection.h"

#include "archive/PackRunner.h"

namespace archive {
namespace {

bool wholeFolderAgreed(const runtime::Services& services, const std::string& folder) {
  return services.user.message(
             "This will create a tar file for all files and subdirectories under:\r" + folder,
             runtime::Buttons::OkCancel, runtime::Icon::None, "Warning..",
             runtime::Consequence::MakesSomethingNew) == runtime::Answer::Ok;
}

}  // namespace

PackSelection packSelection(const runtime::FilePane& pane, bool whole) {
  PackSelection selection;
  selection.currentFolder = runtime::withoutTrailingBackslash(pane.GetDir1Path());
  if (!whole) selection.selectedPaths = pane.selectedPaths();
  if (selection.selectedPaths.empty()) selection.paneItems = pane.paneItems();
  return selection;
}

TarSelection checkSelection(const runtime::Services& services, runtime::FilePane& pane) {
  const PackSelection selection = packSelection(pane, false);
  const PackRunner runner(services);
  if (!runner.selectionExists(selection)) return TarSelection::Stopped;
  if (!selection.selectedPaths.empty()) return TarSelection::Selected;
  if (!wholeFolderAgreed(services, selection.currentFolder)) return TarSelection::Stopped;
  pane.selectAllRows();
  return TarSelection::WholeFolder;
}

}  // namespace archive
