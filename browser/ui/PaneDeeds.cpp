#include "browser/ui/PaneDeeds.h"

#include <QDrag>
#include <QIcon>
#include <QLineEdit>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "browser/ui/frameMain.h"
#include "platform/desktop/Clipboard.h"
#include "platform/desktop/Text.h"

namespace browser {

PaneDeeds::PaneDeeds(runtime::Services services, frameMain& frame, PaneViews& pane, const DirPaneModel& model,
                     PaneSelection& selection)
    : QObject(&frame), services_(services), frame_(frame), pane_(pane), model_(model), selection_(selection) {
  wireKeys();
  connect(&pane_, &PaneViews::dragBegun, this, &PaneDeeds::drag);
  // The box is closed before anything else happens to its row.
  connect(
      &model_, &DirPaneModel::nameTyped, this,
      [this](const QString& name, const QString& typed) {
        rename(platform::desktop::fromControl(name), platform::desktop::fromControl(typed));
      },
      Qt::QueuedConnection);
}

/// What a text box needs for itself is heard in the pane only.
void PaneDeeds::wireKeys() {
  const auto idle = [this] { return !pane_.editing(); };
  const auto key = [this, idle](const char* name, void (PaneDeeds::*deed)(), QKeySequence keys) {
    return platform::desktop::Action{.name = name,
                                     .handler = [this, deed] { (this->*deed)(); },
                                     .enabledWhen = idle,
                                     .keys = std::move(keys),
                                     .keysWithin = true};
  };
  new platform::desktop::ActionTable(
      pane_, services_.system.busy,
      {key("keyRename", &PaneDeeds::editName, Qt::Key_F2),
       key("keyTrash", &PaneDeeds::moveToTrash, Qt::Key_Delete),
       key("keyEdit", &PaneDeeds::openInEditor, Qt::Key_F4),
       key("keyCopy", &PaneDeeds::copyFiles, Qt::CTRL | Qt::Key_C),
       key("keyCopyPaths", &PaneDeeds::copyHostPaths, Qt::CTRL | Qt::SHIFT | Qt::Key_C)});
  new platform::desktop::ActionTable(frame_, services_.system.busy,
                                     {{.name = "keyNewFolder",
                                       .handler = [this] { makeFolder(); },
                                       .enabledWhen = idle,
                                       .keys = Qt::CTRL | Qt::SHIFT | Qt::Key_N}});
}

FileDeeds PaneDeeds::deeds() const { return FileDeeds(services_, frame_.GetDir1Path()); }

std::vector<std::string> PaneDeeds::paths() const {
  std::vector<std::string> paths = selection_.names();
  for (std::string& path : paths) path.insert(0, frame_.GetDir1Path());
  return paths;
}

void PaneDeeds::editName() {
  const int row = pane_.chosenRow();
  if (row >= 0) edit(model_.rows()[static_cast<std::size_t>(row)].name);
}

void PaneDeeds::edit(const std::string& name) {
  const std::vector<int> rows = model_.rowsOf({name});
  if (rows.empty()) return;
  pane_.goTo(rows.front());
  const QModelIndex index = model_.index(rows.front(), 0);
  pane_.view().edit(index);
  auto* const box = qobject_cast<QLineEdit*>(pane_.view().indexWidget(index));
  if (box == nullptr) return;
  const bool folder = isFolderRow(model_.rows()[static_cast<std::size_t>(rows.front())]);
  const std::string stem = folder ? name : name.substr(0, stemLength(name));
  box->setSelection(0, static_cast<int>(platform::desktop::toControl(stem).size()));
}

/// The row goes on as the current one, and selected where it was.
void PaneDeeds::rename(const std::string& name, const std::string& typed) {
  if (services_.system.busy.held() || typed == name) return;
  const platform::Busy::Scope busy(services_.system.busy);
  const std::vector<std::string> selected = selection_.names();
  const std::string renamed = deeds().rename(name, typed);
  frame_.refreshKeepList();
  const std::vector<int> rows = model_.rowsOf({renamed});
  if (rows.empty()) return;
  if (std::ranges::find(selected, name) != selected.end()) pane_.selectRows(rows);
  pane_.goTo(rows.front());
}

void PaneDeeds::makeFolder() {
  std::string name;
  {
    const platform::Busy::Scope busy(services_.system.busy);
    name = deeds().makeFolder();
    frame_.refreshKeepList();
    const std::vector<int> rows = model_.rowsOf({name});
    if (rows.empty()) return;
    const PaneSelection::Lock lock(selection_);
    pane_.clearSelected();
    pane_.selectRows(rows);
  }
  selection_.read();
  frame_.focusDirPane();
  edit(name);
}

void PaneDeeds::moveToTrash() {
  const platform::Busy::Scope busy(services_.system.busy);
  const runtime::JobEnd end = deeds().moveToTrash(selection_.names());
  if (end != runtime::JobEnd::Refused) frame_.refreshKeepList();
}

void PaneDeeds::openInEditor() {
  const platform::Busy::Scope busy(services_.system.busy);
  deeds().edit(selection_.names());
}

void PaneDeeds::copyFiles() {
  if (platform::desktop::copyFiles(services_.system.drives, paths()))
    deeds().logCopied(selection_.names(), "Copied");
}

/// A path that is no text of one line would be another one where it is pasted.
void PaneDeeds::copyHostPaths() {
  std::vector<std::string> copied, left;
  QStringList lines;
  for (const std::string& name : selection_.names()) {
    const std::string host = services_.system.drives.toHost(frame_.GetDir1Path() + name).value_or("");
    const QString line = QString::fromStdString(host);
    const bool text = line.toStdString() == host && host.find_first_of("\r\n") == host.npos;
    (text ? copied : left).push_back(text ? name : name + " (its path is no text)");
    if (text) lines.append(line);
  }
  if (!copied.empty() && platform::desktop::copyText(lines.join(QLatin1Char('\n'))))
    deeds().logCopied(copied, "Copied as host paths");
  deeds().tellLeft(left, "copied");
}

/// Whoever takes the rows copies them; they never go from here.
void PaneDeeds::drag() {
  auto files = platform::desktop::fileOffer(services_.system.drives, paths());
  if (services_.system.busy.held() || !files) return;
  auto* const drag = new QDrag(&pane_);  // Qt deletes it
  drag->setMimeData(files.release());
  const QModelIndex index = model_.index(pane_.currentRow(), 0);
  drag->setPixmap(qvariant_cast<QIcon>(index.data(Qt::DecorationRole)).pixmap(pane_.view().iconSize()));
  drag->exec(Qt::CopyAction);
}

}  // namespace browser
