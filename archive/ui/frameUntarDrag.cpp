// Entries dragged out of the tree: files to be copied, unpacked when the drag begins.

#include <QDrag>
#include <QGuiApplication>
#include <algorithm>

#include "archive/ui/frameUntar.h"
#include "platform/desktop/Clipboard.h"
#include "ui_frameUntar.h"

namespace archive {

/// A button that was released before all was unpacked drags nothing; the next drag finds it done.
void frameUntar::tarTree_StartDrag() {
  if (!listed_) return;
  if (showsOlderFile()) return ListArchive();
  leaving_ = false;
  const std::vector<std::string>* const paths = takeOut(selectedEntries());
  if (leaving_) return leave();
  if (paths == nullptr || !QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) return;
  auto files = platform::desktop::fileOffer(services_.system.drives, *paths);
  if (!files) return;
  auto* const drag = new QDrag(ui_->tarTree);  // Qt deletes it
  drag->setMimeData(files.release());
  drag->exec(Qt::CopyAction);
}

std::vector<NodeId> frameUntar::selectedEntries() const {
  std::vector<NodeId> entries;
  for (const QModelIndex& index : ui_->tarTree->selectionModel()->selectedIndexes())
    entries.push_back(ArchiveTreeModel::node(index));
  std::ranges::sort(entries);
  return entries;
}

/// What was unpacked, now or for an earlier drag. nullptr: nothing, which has been told.
const std::vector<std::string>* frameUntar::takeOut(const std::vector<NodeId>& entries) {
  const std::string name = inside_.empty() ? listed_->path : inside_.name();
  TakeOutJob job(services_, listed_->path, name, model_->tree(), entries);
  Dragged now{*listed_, entries, job.members(), {}};
  for (const Dragged& one : dragged_)
    if (one.file == now.file && one.entries == now.entries && one.members == now.members)
      return &one.out.paths;
  const platform::Busy::Scope busy(services_.system.busy);
  now.out = job.run();
  if (now.out.end != runtime::JobEnd::Done) return nullptr;
  dragged_.push_back(std::move(now));
  return &dragged_.back().out.paths;
}

}  // namespace archive
