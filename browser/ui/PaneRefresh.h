#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <optional>

#include "browser/QuietListing.h"
#include "browser/RefreshPace.h"
#include "browser/ui/PaneListing.h"
#include "platform/FolderWatch.h"

namespace browser {

/// Keeps the file pane true while other programs write into the open folder. Only what differs is shown anew:
/// focus, place and selection stay. Nothing is done while a job runs, a dialog, a menu or the box of a name
/// is open, or a button of the mouse is down; what a listing covers is not looked at twice.
class PaneRefresh : public QObject {
  Q_OBJECT

 public:
  /// All are lent. `choice` says what is to be listed, each time anew.
  PaneRefresh(runtime::Services services, platform::desktop::FolderList& folders, PaneViews& pane,
              DirPaneModel& model, PaneSelection& selection, PaneListing& listing,
              std::function<ListingChoice()> choice, QObject* parent);

 signals:
  void folderGone();  ///< the open folder is not there any more, or cannot be read; its volume is there

 private:
  void listingBegins();
  void listingEnds();
  void forgetChanges();
  void folderChanged();
  void planLook();
  void look();
  void takeFound();
  void show(QuietListing::Found found);
  bool updateRows(std::vector<PaneRow>& rows);  // see DirPaneModel
  void showRows(std::vector<PaneRow> rows);
  bool mayAct() const;

  runtime::Services services_;
  platform::desktop::FolderList& folders_;
  PaneViews& pane_;
  DirPaneModel& model_;
  PaneSelection& selection_;
  PaneListing& listing_;
  std::function<ListingChoice()> choice_;
  platform::FolderWatch watch_;
  RefreshPace pace_;
  RefreshPace::Clock::time_point listingBegan_;
  std::optional<QuietListing> quiet_;
  QTimer due_;
  QTimer ready_;  // ticks while the folder is being read
};

}  // namespace browser
