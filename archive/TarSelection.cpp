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

PackSelection packSelection(const runtime::MainWindow& mainWindow, bool whole) {
  PackSelection selection;
  selection.currentFolder = runtime::withoutTrailingBackslash(mainWindow.GetDir1Path());
  if (!whole) selection.selectedPaths = mainWindow.selectedPaths();
  if (selection.selectedPaths.empty()) selection.paneItems = mainWindow.paneItems();
  return selection;
}

TarSelection checkSelection(const runtime::Services& services, runtime::MainWindow& mainWindow) {
  const PackSelection selection = packSelection(mainWindow, false);
  const PackRunner runner(services);
  if (!runner.selectionExists(selection)) return TarSelection::Stopped;
  if (!selection.selectedPaths.empty()) return TarSelection::Selected;
  if (!wholeFolderAgreed(services, selection.currentFolder)) return TarSelection::Stopped;
  mainWindow.selectAllRows();
  return TarSelection::WholeFolder;
}

}  // namespace archive
