#include "tools/every_window.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QShortcut>
#include <QTabWidget>
#include <QTimer>
#include <QTreeView>

#include "archive/ui/frmGetOutFolder.h"
#include "archive/ui/frmOverwriteFile.h"
#include "archive/ui/frmQuickExtract.h"
#include "browser/ui/DrawnMenu.h"
#include "browser/ui/frmPattern.h"
#include "download/ui/frmPortErr.h"
#include "download/ui/frmWDXOptions.h"
#include "platform/HeldName.h"
#include "platform/desktop/CommandConsole.h"
#include "platform/desktop/FilePickers.h"
#include "platform/desktop/Gate.h"
#include "platform/desktop/HelpWindow.h"
#include "shell/HelpPages.h"
#include "shell/ui/DesktopUser.h"
#include "shell/ui/Dialog.h"
#include "shell/ui/frmAbout.h"
#include "shell/ui/frmMain.h"
#include "shell/ui/frmOptions.h"
#include "shell/ui/frmPermsError.h"

namespace {

using tools::Visit;

constexpr const char* folder = "C:\\kt500-app";

class Session {
 public:
  explicit Session(Visit visit) : visit_(std::move(visit)) {
    host_.confineTools();
    const auto asIs = [](std::string_view text) { return platform::TypedPath{std::string(text), {}}; };
    const shell::HostArguments arguments = shell::readArguments({"-d", folder}, asIs, platform::holdName);
    window_.Load(shell::parseCommandLine(arguments.text));
  }

  void run() {
    takeMain();
    takeMenu();
    takeProperties();
    takeDeeds();
    takeDialogsOfTheMainWindow();
    takeArchive();
    takeOptions();
    takeSmallOnes();  // with the quick form, whose end is the program's
    takeBoxes();
    takePickers();
    takeConsole();
    takeProgress();
    takeHelp();
  }

 private:
  void take(QWidget& window, const char* name) {
    window.ensurePolished();
    the<QLabel>("lblLast").clear();  // its time would make every picture anew
    settle();
    visit_(window, name);
  }
  static void settle() {
    for (int i = 0; i < 5; ++i) QApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  template <typename Control = QWidget>
  Control& the(const char* name) {
    return *window_.findChild<Control*>(QLatin1String(name));
  }
  template <typename Dialog>
  void takeShown(Dialog&& dialog, const char* name) {
    dialog.show();
    take(dialog, name);
    dialog.close();
  }

  /// Takes what `open` opens, once it is what is wanted; `then` may go on from there before it is closed.
  void takeOpened(const std::function<void()>& open, const char* name,
                  const std::function<bool(const QWidget&)>& wanted,
                  const std::function<void(QWidget&)>& then) {
    QTimer poll;
    poll.setInterval(20);
    QObject::connect(&poll, &QTimer::timeout, &window_, [&] {
      auto* const modal = QApplication::activeModalWidget();
      if (modal == nullptr || !wanted(*modal)) return;
      poll.stop();
      take(*modal, name);
      if (then) then(*modal);
      modal->close();
    });
    poll.start();
    open();
    if (poll.isActive()) qFatal("%s did not open", name);
  }

  /// A window of the program's own, once it is filled.
  void takeModal(const std::function<void()>& open, const char* name,
                 const std::function<void(QWidget&)>& then = {}) {
    const auto filled = [this, name](const QWidget& modal) {
      if (modal.objectName() != QLatin1String(name) || host_.busy.held()) return false;
      const auto* const size = modal.findChild<QLabel*>(QStringLiteral("lblSize"));
      return size == nullptr || size->text() != QLatin1String("calculating...");
    };
    takeOpened(open, name, filled, then);
  }

  /// A box that tells or asks; a job may wait for it.
  void takeBox(const std::function<void()>& open, const char* name) {
    takeOpened(open, name, [](const QWidget&) { return true; }, {});
  }

  void selectRows(const std::vector<std::string>& names) {
    the<QTreeView>("DirPane").clearSelection();
    for (const std::string& name : names) window_.browsing().selectRow(name);
    window_.browsing().goToSelected();
    window_.getDirPaneSelected();
  }

  void takeMain() {
    selectRows({"run.sh", "usr8"});
    take(window_, "frmMain");
    window_.browsing().setViewMode(2);
    window_.refreshKeepList();
    take(window_, "view-list");
    window_.browsing().setViewMode(0);
    window_.refreshKeepList();
    take(window_, "view-icons");
    window_.browsing().setViewMode(3);
    window_.refreshKeepList();
    const QSize size = window_.size();
    window_.resize(640, 480);
    the<QAction>("mnuShowLog").trigger();
    take(window_, "small-with-log");
    the<QAction>("mnuShowLog").trigger();
    window_.resize(size);
  }

  void takeMenu() {
    selectRows({"kt500hello"});
    auto& pane = the<QTreeView>("DirPane");
    const QPoint at = pane.visualRect(pane.currentIndex()).bottomLeft() + QPoint(40, 0);
    emit window_.browsing().menuWanted(pane.viewport()->mapToGlobal(at));
    auto* const menu = window_.findChild<browser::DrawnMenu*>(QStringLiteral("frmRightClick"));
    for (int i = 0; i < 5; ++i)
      QApplication::sendEvent(
          menu, std::make_unique<QKeyEvent>(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier).get());
    QApplication::sendEvent(
        menu, std::make_unique<QKeyEvent>(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier).get());
    take(window_, "menu");
    menu->closeAll();
    settle();
  }

  void takeProperties() {
    selectRows({"run.sh"});
    emit window_.browsing().menuWanted({});
    auto* const entry = window_.findChild<QWidget*>(QStringLiteral("frmRightClick"))
                            ->findChild<QAbstractButton*>(QStringLiteral("mnuRightClick_0"));
    takeModal([entry] { entry->click(); }, "frmProperties");
  }

  void takeDialogsOfTheMainWindow() {
    selectRows({"run.sh", "readme.txt", "usr8"});
    const auto press = [this](const char* name) {
      return [this, name] { the<QAbstractButton>(name).click(); };
    };
    takeModal(press("cmdSetPerms"), "frmPermissions", [this](QWidget& form) {
      takeModal([&form] { form.findChild<QAbstractButton*>(QStringLiteral("cmdPreview"))->click(); },
                "frmPreview");
    });
    takeModal(press("cmdSetOwner"), "frmOwner");
    takeModal(press("cmdTar"), "frmTar");
    selectRows({"kt500hello"});
    takeModal([this] { the<QAction>("mnuNetwork").trigger(); }, "frmNetloader");
  }

  void takeArchive() {
    emit window_.browsing().archiveOpened("C:\\kt500-app.tgz");
    settle();
    take(window_, "frameUntar");
    the("frameUntar").findChild<QAbstractButton*>(QStringLiteral("cmdCancel"))->click();
    settle();
  }

  void takeOptions() {
    shell::frmOptions form(program_.services(), &window_);
    form.show();
    const char* const names[] = {"frmOptions-shell", "frmOptions-permissions", "frmOptions-usr8"};
    for (int tab = 0; tab < 3; ++tab) {
      form.findChild<QTabWidget*>(QStringLiteral("SSTab1"))->setCurrentIndex(tab);
      take(form, names[tab]);
    }
  }

  void takeSmallOnes() {
    takeShown(shell::frmAbout(&window_), "frmAbout");
    takeShown(shell::frmPermsError(program_.settings, &window_), "frmPermsError");
    takeShown(shell::Dialog(program_.settings, &window_), "Dialog");
    takeShown(browser::frmPattern("*.sh", &window_), "frmPattern");
    takeShown(archive::frmOverwriteFile(overwriteQuestion(), &window_), "frmOverwriteFile");
    takeShown(archive::frmGetOutFolder(program_.services(), folder, &window_), "frmGetOutFolder");
    takeShown(archive::frmQuickExtract(program_.services(), &window_), "frmQuickExtract");
    takeShown(download::frmWDXOptions(program_.services(), pickers_, std::string(folder) + ".tgz", &window_),
              "frmWDXOptions");
    takeShown(download::frmPortErr(1, &window_), "frmPortErr");
  }

  void takeDeeds() {
    selectRows({"readme.txt"});
    emit the<QShortcut>("keyRename").activated();
    take(window_, "rename");
    window_.refreshKeepList();  // takes the box away
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    selectRows({"readme.txt", "run.sh"});
    takeBox([this] { emit the<QShortcut>("keyTrash").activated(); }, "box-question");
  }

  void takeBoxes() {
    takeBox(
        [this] {
          user_.explainedMessage("Unable to connect to terminal",
                                 "192.168.1.7, port 5142, refused the connection.\r"
                                 "Is the terminal waiting for a download?",
                                 runtime::Icon::Critical, "Error..");
        },
        "box-explained");
    takeBox([this] { user_.showCommand("Command", "What is run:", "tar.exe -cf kt500-app.tar usr8"); },
            "box-input");
  }

  void takePickers() {
    platform::desktop::FileRequest request;
    request.title = "Open";
    request.startFolder = folder;
    request.filter = "Tar Files|*.tar;*.tgz|All Files|*.*";
    takeBox([&] { pickers_.openFile(request); }, "picker-open");
    takeBox([&] { pickers_.saveFile(request); }, "picker-save");
    takeBox([&] { pickers_.folder("Choose Folder", folder); }, "picker-folder");
  }

  /// After a run: progress, the loader's end, the pause.
  void takeConsole() {
    platform::desktop::CommandConsole console(
        host_.drives, R"(/c ""C:\tools\wdx.exe" -p 1 -b 115200 -i "kt500-app.tgz"" & pause)");
    console.show();
    while (console.isRunning()) settle();
    take(console, "console");
  }

  /// In the middle of a run.
  void takeProgress() {
    const auto written = [] { return std::uint64_t{734'208}; };
    user_.consoleOpened({"Creating kt500-app.tgz", 0, written});
    user_.consoleOutput("kt500hello\nreadme.txt\nrun.sh\nusr8/\nusr8/settings\n");
    QWidget* panel = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->objectName() == QLatin1String("frmProgress")) panel = window;
    while (!panel->isVisible()) settle();
    take(*panel, "frmProgress");
    user_.consoleClosed();
  }

  void takeHelp() {
    const platform::desktop::HelpFile file(
        QString::fromStdString(host_.drives.toHost(host_.programFolder + shell::helpFile).value()));
    platform::desktop::HelpWindow help(file);
    help.showPage(QStringLiteral("packing.html"));
    help.resize(980, 720);
    help.show();
    take(help, "frmHelp");
  }

  static archive::OverwriteQuestion overwriteQuestion() {
    archive::OverwriteQuestion question;
    question.path = std::string(folder) + "\\run.sh";
    question.size = 226;
    question.modified = 1780000000;
    question.member = "231 bytes, 2026-05-28 20:26";
    return question;
  }

  Visit visit_;
  shell::Host host_;
  shell::DesktopUser user_{host_.busy};
  shell::Program program_{host_.system(), host_.programFolder, user_};
  platform::desktop::DesktopFilePickers pickers_{host_.drives};
  platform::desktop::Gate gate_{host_.busy};
  shell::frmMain window_{program_, pickers_};
};

}  // namespace

void tools::openEveryWindow(const Visit& visit) { Session(visit).run(); }
