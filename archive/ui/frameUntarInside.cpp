// Archives inside the archive that the extract frame lists: the way in, and the way back.

#include "archive/ui/frameUntar.h"
#include "platform/desktop/Text.h"
#include "runtime/ImageKeys.h"
#include "ui_frameUntar.h"

namespace archive {

using platform::desktop::toControl;

/// What is shown, as long as the box names the file around it and that is still the one that was opened; else
/// what the box names.
std::string frameUntar::archiveToList() {
  const std::string named = typedPaths().archive;
  if (inside_.empty()) return named;
  if (inside_.outermost().file == listedFile(services_.system.files, named)) return inside_.path();
  closeInside();
  return named;
}

bool frameUntar::canOpenInside() const {
  return listed_ && isInnerArchive(model_->tree(), rightClickedNode_);
}

void frameUntar::mnuTarTreeOpen_Click() {
  if (showsOlderFile()) return ListArchive();
  leaving_ = false;
  bool entered = false;
  {
    const platform::Busy::Scope busy(services_.system.busy);
    ui_->frameTarRefreshLabel->show();
    UnpackedMember inner =
        InnerArchiveJob(services_, listed_->path, model_->tree().memberPath(rightClickedNode_)).run();
    ui_->frameTarRefreshLabel->hide();
    if (inner.end == runtime::JobEnd::Done) entered = enter(std::move(inner));
  }
  if (leaving_) return leave();
  if (entered) ui_->cmdUnTar->setFocus(Qt::OtherFocusReason);
}

/// A member that turns out to be no archive is left at once.
bool frameUntar::enter(UnpackedMember inner) {
  inside_.enter({*listed_, model_->takeTree(), rightClickedNode_, proposal_}, std::move(inner));
  listed_.reset();
  propose(inside_.proposal());
  tellWhatIsShown();
  if (list(inside_.path())) return true;
  goBack();
  return false;
}

void frameUntar::cmdBack_Click() {
  if (inside_.empty()) return;
  goBack();
  if (showsOlderFile()) ListArchive();
}

/// The tree as it was left.
void frameUntar::goBack() {
  ui_->txtFileIn->setText(toControl(inside_.outermost().file.path));
  OpenArchives::Outer outer = inside_.leave();
  propose(outer.proposal);
  listed_ = std::move(outer.file);
  rightClickedNode_ = 0;
  extractable_ = true;
  actions_->update();
  model_->setTree(std::move(outer.tree));
  openAgain(model_->tree());
  ui_->tarTree->setCurrentIndex(model_->indexOf(outer.member));
  ui_->tarTree->setFocus(Qt::OtherFocusReason);
  tellWhatIsShown();
}

/// A folder's picture says whether it was open.
void frameUntar::openAgain(const ArchiveTree& tree) {
  const int open = runtime::ImageIndexForKey("fldrOpen");
  for (NodeId node = 1; node <= tree.nodeCount(); ++node)
    if (tree.image(node) == open) ui_->tarTree->expand(model_->indexOf(node));
}

void frameUntar::closeInside() {
  if (!inside_.empty()) {
    propose(inside_.outermost().proposal);
    inside_ = {};
    listed_.reset();
    rightClickedNode_ = 0;
    model_->clear();
  }
  tellWhatIsShown();
}

void frameUntar::tellWhatIsShown() {
  const bool inside = !inside_.empty();
  const QString label = inside ? platform::desktop::toShown("Contents of " + inside_.name() + ':')
                               : QStringLiteral("Contents of Tar File:");
  ui_->Label7->setText(label);
  ui_->tarTree->setAccessibleName(label);
  ui_->cmdBack->setVisible(inside);
  if (inside) ui_->txtFileIn->setText(toControl(inside_.outermost().file.path));
}

}  // namespace archive
