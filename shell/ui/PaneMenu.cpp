#include "shell/ui/PaneMenu.h"

#include "browser/ui/frmProperties.h"
#include "platform/StartProgram.h"
#include "platform/desktop/WaitCursor.h"
#include "shell/ui/frmMain.h"

namespace shell {

using browser::DrawnMenu;

namespace {

constexpr const char* cannotDownload = "Can't Download";

}  // namespace

void PaneMenu::open(QPoint at) {
  if (!menu_.isNull()) menu_->closeAll();
  browser::frameMain& pane = window_.browsing();
  menu_ = new browser::frmRightClick(
      window_.program().system.busy, rows(),
      [&pane](DrawnMenu& opener) { return pane.newShowFilesMenu(opener); },
      [&pane](DrawnMenu& opener) { return pane.newViewMenu(opener); }, &window_);
  menu_->openAt(at);
}

/// The entries look as the selection was when the menu opened.
std::vector<platform::desktop::Action> PaneMenu::rows() {
  const auto oneFile = [one = window_.oneFileSelected()] { return one; };
  return {
      {"mnuRightClick_1", [this] { download(&frmMain::mnuSerial_Click); }, oneFile},
      {"mnuRightClick_2", [this] { download(&frmMain::mnuNetwork_Click); }, oneFile},
      {"mnuRightClick_4", [this] { window_.refreshKeepList(); }},
      {"mnuRightClick_6", [this] { openContainingFolder(); }},
      {"mnuRightClick_0", [this] { showProperties(); }},
  };
}

void PaneMenu::download(void (frmMain::*how)()) {
  const std::size_t count = window_.selectedPaths().size();
  if (count == 1) return (window_.*how)();
  window_.program().user.message(
      count > 1 ? "Error: Too many files selected.\rPlease select only one file to download."
                : "Error: No files selected.\rPlease select a file to download first.",
      runtime::Buttons::Ok, runtime::Icon::Critical, cannotDownload);
}

/// What is said and what is counted are of one moment.
void PaneMenu::showProperties() {
  const runtime::Services services = window_.program().services();
  const runtime::Selection selection = window_.program().selection;
  const std::string folder = window_.GetDir1Path();
  const std::vector<std::string> rows = window_.paneItems();
  std::optional<browser::PropertiesRecord> record;
  {
    const platform::desktop::WaitCursor hourglass;
    record = browser::propertiesOf(services, selection, folder, rows);
  }
  if (record)
    browser::frmProperties(services, *record, browser::itemsOf(selection, folder, rows), &window_).exec();
}

void PaneMenu::openContainingFolder() {
  const runtime::Services services = window_.program().services();
  const std::string folder = window_.browsing().dir1Path();
  const std::string problem =
      platform::startProgram(services.system.drives, services.system.environment,
                             {"explorer " + folder, folder, services.cygwin.GetEXEPath()});
  if (!problem.empty()) services.log.append(" Unable to open: " + folder + " (" + problem + ")");
}

}  // namespace shell
