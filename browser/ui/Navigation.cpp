#include "browser/ui/Navigation.h"

#include <QPointer>
#include <QShortcut>
#include <utility>

#include "platform/HeldName.h"
#include "platform/ResolvedPath.h"
#include "platform/TypedPath.h"
#include "platform/desktop/FolderCompleter.h"
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
  platform::Busy& running = services_.system.busy;
  Timer1_.setObjectName(QStringLiteral("Timer1"));
  Timer1_.setInterval(tick);
  drives_.setDrives(services_.system.drives);
  folders_.setDrives(services_.system.drives, running);
  showInitialFolder();
  setWhileBusy(&location_, platform::desktop::WhileBusy::Remembered);
  new platform::desktop::FolderCompleter(location_, services_.system.drives,
                                         [this] { return folders_.path(); });
  auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), &location_);
  escape->setContext(Qt::WidgetShortcut);
  // A change must never pass unheard: what has to wait for the gate is remembered.
  connect(&drives_, &DriveList::driveChanged, this, &Navigation::Drive1_Change);
  connect(&folders_, &FolderList::changed, this, &Navigation::leftFolder);
  connect(&folders_, &FolderList::changed, this, &Navigation::folderChanged);
  connect(&folders_, &FolderList::openFolderClicked, this, &Navigation::Dir1_OpenFolderClick);
  connectHandler(&folders_, &FolderList::rightClicked, this, running, &Navigation::Dir1_RightClick);
  connect(&location_, &QLineEdit::returnPressed, this, &Navigation::txtLocation_Enter);
  connect(escape, &QShortcut::activated, this, &Navigation::showLocation);
  connect(&Timer1_, &QTimer::timeout, this, &Navigation::Timer1_Timer);
}

void Navigation::showInitialFolder() {
  const DriveLock lock(*this);
  if (!folders_.setPath(services_.cygwin.GetEXEPath())) folders_.setPath(fallbackFolder);
  current_ = folders_.path();
}

/// What nobody has seen, since the window did not show yet, is no way back.
void Navigation::leftFolder() {
  if (current_ == folders_.path()) return;
  std::string left = std::exchange(current_, folders_.path());
  if (!folders_.window()->isVisible()) return;
  back_.push_back(std::move(left));
  ahead_.clear();
}

void Navigation::goBack() { travel(back_, ahead_); }

void Navigation::goForward() { travel(ahead_, back_); }

/// What is on the way is kept aside: opening a folder is told of like any other.
void Navigation::travel(std::vector<std::string>& from, std::vector<std::string>& to) {
  std::vector<std::string> rest = from;
  std::vector<std::string> passed = to;
  passed.push_back(folders_.path());
  while (!rest.empty()) {
    const std::string target = std::move(rest.back());
    rest.pop_back();
    if (target == folders_.path() || !openLocked(target)) continue;
    from = std::move(rest);
    to = std::move(passed);
    return;
  }
}

void Navigation::whenFree(std::function<void()> deed) {
  services_.system.busy.whenFree(platform::Busy::Width::OpenFolder,
                                 [alive = QPointer<Navigation>(this), deed = std::move(deed)] {
                                   if (!alive.isNull()) deed();
                                 });
}

void Navigation::openFolder(const std::string& path) {
  const platform::Busy::Scope busy(services_.system.busy);
  const std::string wanted = services_.system.files.folderExists(path) ? path : fallbackFolder;
  const std::string before = folders_.path();
  {
    const DriveLock lock(*this);
    if (!drives_.setDrive(wanted)) return;
    services_.user.letEventsRun();
    if (!folders_.setPath(wanted)) {
      emit folders_.refused(wanted);
      return;
    }
  }
  if (folders_.path() == before) emit folderChanged();
}

bool Navigation::openSubfolder(const std::string& path) { return folders_.setPath(path); }

void Navigation::openParent() {
  if (folders_.path().size() <= rootLength) return;
  const std::string parent = platform::desktop::folderPath(runtime::getFilePath(folders_.path()));
  if (!folders_.setPath(parent)) emit folders_.refused(parent);
}

bool Navigation::openNearest() {
  std::string path = folders_.path();
  while (path.size() > rootLength) {
    path = platform::desktop::folderPath(runtime::getFilePath(path));
    if (openLocked(path)) return true;
  }
  return false;
}

void Navigation::Drive1_Change() {
  if (!drivesLocked_) whenFree([this, drive = drives_.drive()] { openDrive(drive); });
}

void Navigation::openDrive(const std::string& drive) {
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

void Navigation::tellUnavailable(const std::string& path) {
  services_.user.message("Unavailable to access: '" + path + "'", Buttons::Ok, Icon::Critical, errorTitle);
}

bool Navigation::openLocked(const std::string& path) {
  const DriveLock lock(*this);
  return folders_.setPath(path);
}

void Navigation::openChosen(const std::string& path) {
  if (!openLocked(path)) tellUnavailable(path);
}

void Navigation::txtLocation_Enter() {
  whenFree([this, text = platform::desktop::fromControl(location_.text())] { openTyped(text); });
}

void Navigation::openTyped(const std::string& text) {
  const platform::TypedPath typed = platform::typedPath(services_.system.drives, text, folders_.path());
  if (typed && openTypedPath(typed.path)) return showLocation();
  if (typed)
    tellUnavailable(typed.path);
  else
    services_.user.message(typed.problem, Buttons::Ok, Icon::Critical, errorTitle);
  location_.selectAll();
}

/// A file's folder is opened, and the file asked for, before anything else that waits for the gate.
bool Navigation::openTypedPath(const std::string& path) {
  const platform::Busy::Scope busy(services_.system.busy);
  if (!services_.system.files.fileExists(path)) return openLocked(path);
  const std::string file = platform::desktop::folderPath(path);
  if (!openLocked(runtime::getFilePath(file))) return false;
  emit fileWanted(runtime::GetFileName(file));
  return true;
}

void Navigation::showLocation() { location_.setText(platform::desktop::toControl(folders_.path())); }

}  // namespace browser
