#include "shell/ui/StartUp.h"

#include "archive/ui/frmQuickExtract.h"
#include "archive/ui/frmTar.h"
#include "perms/PermissionJob.h"
#include "platform/SystemInfo.h"
#include "runtime/ArchiveKind.h"
#include "runtime/PermissionTest.h"
#include "runtime/ShowLogged.h"
#include "shell/BatchPack.h"
#include "shell/BatchTools.h"
#include "shell/ui/Dialog.h"
#include "shell/ui/frmPermsError.h"

namespace shell {
namespace {

using runtime::Buttons;
using runtime::Icon;

constexpr const char* directoryUnchanged =
    "Unable to change current working directory.\rTry running Pakrune directly from the installed '.exe'";

/// The locks of the main window, on for as long as it loads.
class LoadingScope {
 public:
  explicit LoadingScope(browser::frameMain& browsing) : browsing_(browsing) { browsing_.setLoading(true); }
  ~LoadingScope() { browsing_.setLoading(false); }
  LoadingScope(const LoadingScope&) = delete;
  LoadingScope& operator=(const LoadingScope&) = delete;

 private:
  browser::frameMain& browsing_;
};

}  // namespace

bool StartUp::run(const CommandLine& commandLine) {
  const LoadingScope loading(window_.browsing());
  enterProgramFolder();
  checkPrivileges();
  prepareTools();
  const bool goesOn = dispatch(commandLine) && !ends() && (window_.isVisible() || showWindow());
  busy_.reset();
  return goesOn && !ends();
}

/// What a person would do next in the window.
void StartUp::begin(void (frmMain::*action)()) {
  window_.browsing().setLoading(false);
  busy_.reset();
  if (!ends()) (window_.*action)();
}

void StartUp::enterProgramFolder() {
  const std::string& folder = program_.cygwin.GetEXEPath();
  program_.api.SetCurDir(folder);
  if (program_.api.currentFolder() != folder)
    program_.user.message(directoryUnchanged, Buttons::Ok, Icon::Critical);
}

/// Only one version of the system can be asked.
void StartUp::checkPrivileges() {
  if (runtime::GetOSVersion(platform::systemVersion()) != "NT" || platform::isUserAnAdmin()) return;
  if (program_.settings.firstRun()) Dialog(program_.settings, &window_).exec();
  program_.isAdmin = false;
  program_.log.append("You don't have administrative privileges!");
}

void StartUp::prepareTools() {
  shell::prepareTools(program_);
  const std::string version = runtime::GetOSVersion(platform::systemVersion());
  program_.api.setOsVersion(version);
  if (version.starts_with('9'))
    window_.browsing().enableOwnerButtons(false);
  else if (program_.isAdmin)
    runtime::RunPermissionTest(program_.services(),
                               [this] { frmPermsError(program_.settings, &window_).exec(); });
}

bool StartUp::dispatch(const CommandLine& commandLine) {
  if (commandLine.form == Form::Normal)
    window_.browsing().openFolder(program_.settings.initDir());
  else if (commandLine.form == Form::Folder) {
    if (commandLine.folder) window_.browsing().openFolder(*commandLine.folder);
  } else if (commandLine.complete || commandLine.form == Form::Permissions) {
    return act(commandLine);
  }
  normalTail();
  return true;
}

bool StartUp::act(const CommandLine& commandLine) {
  switch (commandLine.form) {
    case Form::Open:
      return openArchiveView(commandLine);
    case Form::Extract:
      return quickExtract(commandLine);
    case Form::Pack:
      return pack(commandLine);
    case Form::QuickPack:
      return quickPackSelection(commandLine);
    case Form::Permissions:
      return permissions(commandLine);
    default:
      return paths(commandLine);
  }
}

/// False when it has been closed, before or now.
bool StartUp::showWindow() {
  if (ends()) return false;
  window_.show();
  window_.activateWindow();
  program_.user.letEventsRun();
  if (ends()) return false;
  window_.browsing().goToSelected();
  window_.browsing().readModes();
  return !ends();
}

void StartUp::normalTail() {
  if (showWindow()) window_.browsing().focusDirPane();
}

void StartUp::takeSelection() {
  window_.browsing().setLoading(false);
  window_.browsing().getDirPaneSelected();
  window_.browsing().setLoading(true);
}

void StartUp::selectNamed(const CommandLine& commandLine) {
  window_.browsing().openFolder(commandLine.fields[1]);
  program_.user.letEventsRun();
  window_.browsing().listRows();
  window_.browsing().clearCurrentRow();
  for (std::size_t i = 2; i < commandLine.fields.size(); ++i)
    window_.browsing().selectRow(commandLine.fields[i]);
  takeSelection();
}

bool StartUp::selectArchive(const CommandLine& commandLine) {
  window_.browsing().openFolder(commandLine.fields[1]);
  program_.user.letEventsRun();
  window_.browsing().listRows();
  window_.browsing().clearCurrentRow();
  if (!window_.browsing().selectRow(commandLine.fields[2])) return false;
  takeSelection();
  return true;
}

bool StartUp::openArchiveView(const CommandLine& commandLine) {
  if (!selectArchive(commandLine)) {
    normalTail();
    return true;
  }
  if (showWindow()) begin(&frmMain::cmdExtract_Click);
  return true;
}

bool StartUp::pack(const CommandLine& commandLine) {
  selectNamed(commandLine);
  if (!showWindow()) return false;
  begin(&frmMain::cmdTar_Click);
  return true;
}

/// The window stays hidden: what is asked and told stands on its own.
bool StartUp::quickPackSelection(const CommandLine& commandLine) {
  selectNamed(commandLine);
  const auto selection = archive::checkSelection(program_.services(), window_);
  program_.exitStatus = 1;
  if (!selection) return false;
  const std::size_t logged = program_.log.size();
  const archive::PackResult packed = quickPack(program_, *selection);
  if (packed.end == runtime::JobEnd::Done)
    program_.exitStatus = 0;
  else if (packed.end == runtime::JobEnd::Failed || packed.end == runtime::JobEnd::Remarks)
    runtime::showLogged(program_.user, program_.log, logged);
  return false;
}

bool StartUp::quickExtract(const CommandLine& commandLine) {
  if (!selectArchive(commandLine)) {
    normalTail();
    return true;
  }
  const platform::Busy::Scope busy(program_.system.busy);
  archive::frmQuickExtract window(program_.services());
  window.setStatus("Preparing to extract tar package, please wait...");
  window.show();
  program_.user.letEventsRun();
  const std::size_t logged = program_.log.size();
  const archive::Extraction result =
      window.QuickExtract(program_.selection.selectedPaths.front(), commandLine.fields[3]);
  program_.exitStatus = result.end == runtime::JobEnd::Done ? 0 : 1;
  if (result.logTells) runtime::showLogged(program_.user, program_.log, logged);
  return false;
}

bool StartUp::permissions(const CommandLine& commandLine) {
  if (!perms::permissionToolFound(program_.services(), "find.exe")) return false;
  if (!commandLine.complete) {
    normalTail();
    return true;
  }
  selectNamed(commandLine);
  if (program_.selection.selectedCount() == 0) {
    if (!perms::agreesToWholeFolder(program_.user, window_.browsing().dir1Path())) return true;
    window_.browsing().setLoading(false);
    window_.selectAllRows();
    window_.browsing().setLoading(true);
  }
  if (!showWindow()) return false;
  begin(&frmMain::showPermissionsAtStart);
  return true;
}

bool StartUp::paths(const CommandLine& commandLine) {
  const std::string& first = commandLine.fields.front();
  const platform::Files& files = program_.system.files;
  if (!files.fileExists(first) && !files.folderExists(first)) {
    normalTail();
    return true;
  }
  window_.browsing().openFolder(runtime::getFilePath(first));
  program_.user.letEventsRun();
  window_.browsing().listRows();
  for (const std::string& path : commandLine.fields) window_.browsing().selectRow(runtime::GetFileName(path));
  takeSelection();
  if (!showWindow() || program_.selection.selectedCount() != 1) return true;
  const std::string& selected = program_.selection.selectedPaths.front();
  if (runtime::opensAsArchive(selected)) begin(&frmMain::cmdExtract_Click);
  return true;
}

}  // namespace shell
