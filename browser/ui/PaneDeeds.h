#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "browser/FileDeeds.h"
#include "browser/ui/PaneSelection.h"
#include "runtime/Services.h"

namespace browser {

class frameMain;

/// The keys by which entries are renamed, made, thrown away, opened and copied in the file pane, and its rows
/// dragged out. They act on the selected rows; with none selected nothing happens.
class PaneDeeds : public QObject {
  Q_OBJECT

 public:
  /// All are lent; it belongs to the frame.
  PaneDeeds(runtime::Services services, frameMain& frame, PaneViews& pane, const DirPaneModel& model,
            PaneSelection& selection);

 private:
  void wireKeys();
  FileDeeds deeds() const;
  std::vector<std::string> paths() const;
  void editName();
  void edit(const std::string& name);
  void rename(const std::string& name, const std::string& typed);
  void makeFolder();
  void moveToTrash();
  void openInEditor();
  void copyFiles();
  void copyHostPaths();
  void drag();

  runtime::Services services_;
  frameMain& frame_;
  PaneViews& pane_;
  const DirPaneModel& model_;
  PaneSelection& selection_;
};

}  // namespace browser
