#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "browser/ui/PaneSelection.h"
#include "runtime/Services.h"

class QDropEvent;

namespace browser {

class frameMain;

/// Files that another program's user drops on the window: the folder of the first one is opened, and those
/// that are in it are selected.
class FileDrops : public QObject {
  Q_OBJECT

 public:
  /// All are lent; it belongs to the frame. `boxes` are those in the window that would take the text of a
  /// drop.
  FileDrops(runtime::Services services, frameMain& frame, PaneViews& pane, const DirPaneModel& model,
            PaneSelection& selection, const std::vector<QWidget*>& boxes);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool takes(const QDropEvent& event) const;
  void open(const std::vector<std::string>& paths);

  runtime::Services services_;
  frameMain& frame_;
  PaneViews& pane_;
  const DirPaneModel& model_;
  PaneSelection& selection_;
};

}  // namespace browser
