#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "browser/FolderListing.h"
#include "browser/ui/PaneSelection.h"
#include "platform/desktop/WaitCursor.h"

namespace browser {

/// Lists the open folder into the file pane. Whoever calls it holds the gate.
class PaneListing : public QObject, private ListingListener {
  Q_OBJECT

 public:
  /// All are lent. `choice` says what is to be listed, each time anew.
  PaneListing(runtime::Services services, platform::desktop::FolderList& folders, PaneViews& pane,
              DirPaneModel& model, PaneSelection& selection, std::function<ListingChoice()> choice,
              QObject* parent);

  /// While one stands the pane takes no input, and the hourglass shows.
  class Shown;

  int viewMode() const { return viewMode_; }
  void setViewMode(int mode) { viewMode_ = mode; }  ///< 0 icons, 2 list, 3 details; applied at each listing

  void list();         ///< rows and modes; nothing is selected afterwards
  void listRows();     ///< the first half
  void readModes();    ///< what is missing: the modes, or all; keeps the selection
  void listKeeping();  ///< lists and selects the same names again
  /// Shows rows that are complete, which nobody asked for; the caller holds no gate.
  void showRows(std::vector<PaneRow> rows);
  bool complete() const { return !rowsAwaited_ && !modesAwaited_; }
  void awaitListing();  ///< another folder is open: rows of the one before must not be taken for its own

 signals:
  void begins();  ///< before anything is read
  void ended();   ///< rows and modes are there, or will not be

 private:
  void keepingSelection(const std::function<void()>& list);
  void rowsFound(std::vector<PaneRow> rows) override;
  void unreadable(const std::string& why) override;
  void modesFound(std::size_t first, std::vector<LsEntry> entries) override;
  void showModes();
  ListingListener& listener() { return *this; }

  runtime::Services services_;
  platform::desktop::FolderList& folders_;
  PaneViews& pane_;
  DirPaneModel& model_;
  PaneSelection& selection_;
  std::function<ListingChoice()> choice_;
  int viewMode_ = 3;
  bool rowsAwaited_ = true;  // the current folder has not been listed
  std::optional<FolderListing> modesAwaited_;
  QElapsedTimer sinceShown_;  // modes come faster than anybody reads
};

class PaneListing::Shown {
 public:
  explicit Shown(PaneViews& pane);
  ~Shown();
  Shown(const Shown&) = delete;
  Shown& operator=(const Shown&) = delete;

 private:
  PaneViews& pane_;
  bool mine_;
  platform::desktop::WaitCursor hourglass_;
};

}  // namespace browser
