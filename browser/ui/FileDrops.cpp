#include "browser/ui/FileDrops.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTimer>

#include "browser/ui/frameMain.h"
#include "platform/desktop/Clipboard.h"

namespace browser {

FileDrops::FileDrops(runtime::Services services, frameMain& frame, PaneViews& pane, const DirPaneModel& model,
                     PaneSelection& selection, const std::vector<QWidget*>& boxes)
    : QObject(&frame), services_(services), frame_(frame), pane_(pane), model_(model), selection_(selection) {
  frame_.window()->setAcceptDrops(true);
  frame_.window()->installEventFilter(this);
  for (QWidget* const box : boxes) box->installEventFilter(this);
}

/// What is dragged from a window of ours is there already, or is unpacked for others. Only what has been
/// taken before moves over the window.
bool FileDrops::takes(const QDropEvent& event) const {
  if (!frame_.isEnabled() || services_.system.busy.held() || event.source() != nullptr) return false;
  return event.type() == QEvent::DragMove
             ? event.mimeData()->hasUrls()
             : !platform::desktop::offeredFiles(services_.system.drives, *event.mimeData()).empty();
}

/// The other program waits until the drop is done, so that the listing comes later.
bool FileDrops::eventFilter(QObject* watched, QEvent* event) {
  const bool drop = event->type() == QEvent::Drop;
  if (!drop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove)
    return QObject::eventFilter(watched, event);
  auto* const offer = static_cast<QDropEvent*>(event);
  if (!takes(*offer)) return QObject::eventFilter(watched, event);
  offer->setDropAction(Qt::CopyAction);
  offer->accept();
  if (!drop) return true;
  const auto paths = platform::desktop::offeredFiles(services_.system.drives, *offer->mimeData());
  QTimer::singleShot(0, this, [this, paths] { open(paths); });
  return true;
}

void FileDrops::open(const std::vector<std::string>& paths) {
  if (services_.system.busy.held()) return;
  const bool root = services_.system.drives.isRoot(paths.front());
  const std::string folder = root ? paths.front() : runtime::getFilePath(paths.front());
  if (!services_.system.files.folderExists(folder)) return;
  std::vector<std::string> names;
  for (const std::string& path : paths)
    if (runtime::getFilePath(path) == folder) names.push_back(runtime::GetFileName(path));
  const platform::Busy::Scope busy(services_.system.busy);
  frame_.openFolder(folder);
  if (frame_.GetDir1Path() != folder) return;
  {
    const PaneSelection::Lock lock(selection_);
    pane_.clearSelected();
    pane_.selectRows(model_.rowsOf(names));
  }
  frame_.goToSelected();
  selection_.read();
  frame_.window()->activateWindow();
}

}  // namespace browser
