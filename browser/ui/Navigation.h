#pragma once

#include <QLineEdit>
#include <QObject>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/DriveList.h"
#include "platform/desktop/FilePickers.h"
#include "platform/desktop/FolderList.h"
#include "runtime/Services.h"

namespace browser {

/// How the current folder (the folder list's path) is chosen: drive list, folder list, folder picker, typed
/// path, parent. The drive list always shows the current folder's drive. What the user chooses while a job
/// holds the gate is opened afterwards; the public operations act at once.
class Navigation : public QObject {
  Q_OBJECT

 public:
  Navigation(runtime::Services services, platform::desktop::FilePickers& pickers,
             platform::desktop::DriveList& drives, platform::desktop::FolderList& folders,
             QLineEdit& location, QObject* parent);

  void openFolder(const std::string& path);     ///< C:\ for a path that is no folder; lists in any case
  bool openSubfolder(const std::string& path);  ///< false, without a word, when it cannot be opened
  bool openNearest();  ///< the nearest parent that is there; false: not even the drive is
  void openParent();   ///< nothing at a root
  void goBack();       ///< to the folder before, of those that are still there; nothing without one
  void goForward();    ///< undoes goBack(), until another folder is opened

 signals:
  void folderChanged();  ///< another folder is the current one, or openFolder asked for the same one
  void relistWanted();   ///< a double click on the folder that is open, also while a job holds the gate
  void fileWanted(const std::string& name);  ///< a file of the current folder was typed

 private:
  class DriveLock;
  void Drive1_Change();
  void Dir1_OpenFolderClick();
  void Dir1_RightClick();
  void txtLocation_Enter();
  void Timer1_Timer();
  void openDrive(const std::string& drive);
  void openChosen(const std::string& path);
  void openTyped(const std::string& text);
  bool openTypedPath(const std::string& path);
  bool openLocked(const std::string& path);
  void tellUnavailable(const std::string& path);
  void showLocation();
  void whenFree(std::function<void()> deed);
  void showInitialFolder();
  void leftFolder();
  void travel(std::vector<std::string>& from, std::vector<std::string>& to);

  runtime::Services services_;
  platform::desktop::FilePickers& pickers_;
  platform::desktop::DriveList& drives_;
  platform::desktop::FolderList& folders_;
  QLineEdit& location_;
  QTimer Timer1_;
  int clickCount_ = 0;
  std::string current_;                    // the folder list's path when it was last told of
  std::vector<std::string> back_, ahead_;  // the nearest last
  bool drivesLocked_ = false;
};

}  // namespace browser
