#include "browser/ui/Navigation.h"

#include "platform/HeldName.h"
#include "platform/ResolvedPath.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"

namespace browser {

using platform::desktop::connectHandler;
using platform::desktop::DriveList;
using platform::desktop::FolderList;
using runtime::Buttons;
using runtime::Icon;

namespace {

constexpr const char* errorTitle = "Error..";
constexpr const char* fallbackFolder = "C:\\";
constexpr int rootLength = 3;
constexpr int tick = 120;  // milliseconds

}  // namespace

/// Changes that the program makes to the drive list open nothing. On release the list shows the drive of the
/// folder that is open, whatever happened.
class Navigation::DriveLock {
 public:
  explicit DriveLock(Navigation& owner) : owner_(owner) { owner_.drivesLocked_ = true; }
  ~DriveLock() {
    owner_.drives_.setDrive(owner_.folders_.path());
    owner_.drivesLocked_ = false;
  }
  DriveLock(const DriveLock&) = delete;
  DriveLock& operator=(const DriveLock&) = delete;

 private:
  Navigation& owner_;
};

Navigation::Navigation(runtime::Services services, platform::desktop::FilePickers& pickers, DriveList& drives,
                       FolderList& folders, QLineEdit& location, QObject* parent)
    : QObject(parent),
      services_(services),
      pickers_(pickers),
      drives_(drives),
      folders_(folders),
      location_(location),
      Timer1_(this) {
  const platform::Busy& running = services_.system.busy;
  Timer1_.setObjectName(QStringLiteral("Timer1"));
  Timer1_.setInterval(tick);
  drives_.setDrives(services_.system.drives, running);
  folders_.setDrives(services_.system.drives, running);
  showInitialFolder();
  // Both lists take no input while a tool runs; a change must never pass unheard.
  connect(&drives_, &DriveList::driveChanged, this, &Navigation::Drive1_Change);
  connect(&folders_, &FolderList::changed, this, &Navigation::folderChanged);
  connectHandler(&folders_, &FolderList::openFolderClicked, this, running, &Navigation::Dir1_OpenFolderClick);
  connectHandler(&folders_, &FolderList::rightClicked, this, running, &Navigation::Dir1_RightClick);
  connectHandler(&location_, &QLineEdit::returnPressed, this, running, &Navigation::txtLocation_Enter);
  connectHandler(&Timer1_, &QTimer::timeout, this, running, &Navigation::Timer1_Timer);
}

void Navigation::showInitialFolder() {
  const DriveLock lock(*this);
  if (!folders_.setPath(services_.cygwin.GetEXEPath())) folders_.setPath(fallbackFolder);
}

void Navigation::openFolder(const std::string& path) {
  const std::string wanted = services_.system.files.folderExists(path) ? path : fallbackFolder;
  const std::string before = folders_.path();
  {
    const DriveLock lock(*this);
    if (!drives_.setDrive(wanted)) return;
    services_.user.letEventsRun();
    if (!folders_.setPath(wanted)) return;
  }
  if (folders_.path() == before) emit folderChanged();
}

bool Navigation::openSubfolder(const std::string& path) { return folders_.setPath(path); }

void Navigation::openParent() {
  const std::string path = folders_.path();
  if (path.size() > rootLength) folders_.setPath(runtime::getFilePath(path));
}

void Navigation::Drive1_Change() {
  if (drivesLocked_) return;
  const std::string drive = drives_.drive();
  if (folders_.setPath(drive + "\\")) return;
  services_.user.message("Drive unavailable '" + drive + "'", Buttons::Ok, Icon::Critical, errorTitle);
  const DriveLock lock(*this);
}

void Navigation::Dir1_OpenFolderClick() {
  if (Timer1_.isActive())
    emit relistWanted();
  else
    Timer1_.start();
}

void Navigation::Timer1_Timer() {
  if (++clickCount_ <= 1) return;
  clickCount_ = 0;
  Timer1_.stop();
}

void Navigation::Dir1_RightClick() {
  const std::string chosen = pickers_.folder("Please select a folder.", folders_.path());
  if (!chosen.empty()) openChosen(chosen);
}

bool Navigation::openChosen(const std::string& path) {
  {
    const DriveLock lock(*this);
    if (folders_.setPath(path)) return true;
  }
  services_.user.message("Unavailable to access: '" + path + "'", Buttons::Ok, Icon::Critical, errorTitle);
  return false;
}

/// A path of the host is understood as well.
void Navigation::txtLocation_Enter() {
  std::string path = platform::desktop::fromControl(location_.text().trimmed());
  if (path.starts_with('/') && !path.starts_with("/cygdrive/"))
    path = services_.system.drives.toWindows(path);
  path = platform::withoutDotDot(services_.system.drives, platform::holdPath(path));
  if (openChosen(path))
    location_.setText(platform::desktop::toControl(folders_.path()));
  else
    location_.selectAll();
}

}  // namespace browser
