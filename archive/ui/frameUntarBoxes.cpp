// The two boxes of the extract frame: what is typed or chosen there, and the output folder that is proposed.

#include "archive/ExtractCommand.h"
#include "archive/ui/frameUntar.h"
#include "archive/ui/frmGetOutFolder.h"
#include "platform/TypedPath.h"
#include "platform/desktop/Text.h"
#include "ui_frameUntar.h"

namespace archive {
namespace {

using platform::desktop::fromControl;
using platform::desktop::toControl;

constexpr const char* archiveFilter =
    "TAR File (*.tar)|*.tar|GZIP Compressed (*.tgz, *.gz, *.z, *.taz)|*.tgz; *.tar.gz;  *.z; *.taz|"
    "BZIP2 Compressed (*.bz2, *.bz, *.tbz2, *.tbz)|*.bz2; *.bz; *.tbz2; *.tbz|All files (*.*)|*.*|";

}  // namespace

/// What the boxes hold, behind readBox. Their first texts are no paths.
frameUntar::Paths frameUntar::typedPaths() const {
  return {fromControl(ui_->txtFileIn->text()), fromControl(ui_->txtOutLocation->text())};
}

/// What was typed becomes the program's path, which the box then shows; or the user is told why not. An empty
/// archive box is left to the checks of the job.
bool frameUntar::readBox(Focus which) {
  QLineEdit* const box = which == Focus::ArchivePath ? ui_->txtFileIn : ui_->txtOutLocation;
  const std::string text = fromControl(box->text());
  if (text == noArchiveChosen || text == noFolderChosen) return true;
  if (text.empty() && which == Focus::ArchivePath) return true;
  const platform::TypedPath typed = platform::typedPath(services_.system.drives, text, pane_.GetDir1Path());
  if (typed) {
    box->setText(toControl(typed.path));
    return true;
  }
  services_.user.message(typed.problem, runtime::Buttons::Ok, runtime::Icon::Critical, "Error");
  focusOn(which);
  return false;
}

/// Nothing while the archive around the one that is shown is named.
void frameUntar::proposeFor(const std::string& archivePath) {
  const bool isOuter = !inside_.empty() && inside_.outermost().file.path == archivePath;
  if (!isOuter && runtime::archiveKind(archivePath) && services_.system.files.isRegularFile(archivePath))
    propose(proposedOutFolder(archivePath));
}

/// Where the folder is proposed before a button reads it.
void frameUntar::txtFileIn_LostFocus() {
  const platform::TypedPath typed =
      platform::typedPath(services_.system.drives, fromControl(ui_->txtFileIn->text()), pane_.GetDir1Path());
  if (typed) proposeFor(typed.path);
}

void frameUntar::focusOn(Focus focus) {
  if (focus == Focus::None) return;
  QLineEdit* box = focus == Focus::ArchivePath ? ui_->txtFileIn : ui_->txtOutLocation;
  box->setFocus(Qt::OtherFocusReason);
  box->selectAll();
}

/// Only in the place of what was proposed before.
void frameUntar::propose(const std::string& folder) {
  if (fromControl(ui_->txtOutLocation->text()) == proposal_) ui_->txtOutLocation->setText(toControl(folder));
  proposal_ = folder;
}

void frameUntar::cmdGetFile_Click() {
  const std::string chosen = pickers_.openFile(
      {"Select Tar File", runtime::getFilePath(typedPaths().archive), archiveFilter, 4, ""});
  if (chosen.empty()) return;
  closeInside();
  ui_->txtFileIn->setText(toControl(chosen));
  ListArchive();
}

void frameUntar::cmdSelectOut_Click() {
  const std::string start = runtime::getFilePath(typedPaths().archive);
  std::string chosen;
  if (pickers_.canAskForFolder()) {
    chosen = pickers_.folder("Please select an output folder.", start);
  } else {
    frmGetOutFolder dialog(services_, start, window());
    dialog.exec();
    chosen = dialog.chosen();
  }
  if (!chosen.empty()) ui_->txtOutLocation->setText(toControl(chosen));
}

}  // namespace archive
