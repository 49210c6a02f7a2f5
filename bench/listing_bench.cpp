// What listing a folder into the file pane costs: the whole of it against the same `ls` runs from a bare
// loop, and how long "Select All" takes. Run it with QT_QPA_PLATFORM=offscreen. Ends with 1 when a bound is
// missed.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "bench/Measure.h"
#include "bench/Nobody.h"
#include "browser/ModePass.h"
#include "browser/ui/ApplyLayout.h"
#include "browser/ui/frameMain.h"

namespace {

namespace fs = std::filesystem;

class NoPickers : public platform::desktop::FilePickers {
 public:
  std::string openFile(const platform::desktop::FileRequest&) override { return {}; }
  std::string saveFile(const platform::desktop::FileRequest&) override { return {}; }
  std::string folder(const std::string&, const std::string&) override { return {}; }
};

/// A folder of plain files with a window that shows it.
class Bench {
 public:
  explicit Bench(int files);
  double ratio(int rounds);
  double selectAll();
  double selectOneMore();  ///< processor milliseconds

 private:
  void list();
  void listBare() const;

  bench::Folder folder_;
  std::string root_ = folder_.path();
  std::vector<std::string> names_;
  platform::DriveTable drives_{{{'C', root_}, {'Z', "/"}}};
  platform::Files files_{drives_};
  platform::Environment environment_{drives_, environ};
  platform::Registry registry_{root_ + "/user", root_ + "/site"};
  platform::UserSettings userSettings_{registry_};
  platform::HostCommandRunner commands_{drives_, environment_, drives_.toWindows(root_ + "/prog/")};
  platform::Busy busy_;
  platform::System system_{drives_, files_, environment_, registry_, userSettings_, commands_, busy_};
  bench::Nobody user_;
  bench::LastLine log_;
  NoPickers pickers_;
  runtime::Settings settings_{registry_, userSettings_, log_};
  runtime::modAPI api_{system_, user_};
  runtime::CygwinEnvironment cygwin_{system_, api_, user_, drives_.toWindows(root_ + "/prog") + "\\"};
  runtime::Selection selection_;
  QWidget window_;
  browser::frameMain* frame_ = nullptr;
};

Bench::Bench(int files) {
  fs::create_directories(root_ + "/prog/bin");
  for (const char* tool : {"tar", "chmod", "ls"})
    fs::create_symlink(std::string("/usr/bin/") + tool, root_ + "/prog/bin/" + tool + ".exe");
  fs::create_directory(root_ + "/many");
  for (int i = 0; i < files; ++i) {
    names_.push_back("file number " + std::to_string(i) + ".txt");
    std::ofstream(root_ + "/many/" + names_.back()) << i;
  }
  cygwin_.AddDotToPath();
  cygwin_.FindCygwinRoot();
  cygwin_.CheckCygwinTools();
  const double scale = browser::pixelsPerTwip(window_);
  window_.resize(browser::startSize(scale));
  frame_ = new browser::frameMain({system_, api_, cygwin_, user_, log_, settings_}, selection_, pickers_,
                                  &window_);
  browser::applyLayout(window_, browser::Layout(), scale);
  window_.show();
  frame_->openFolder("C:\\many");
  QApplication::processEvents();
}

/// The same names in the same runs, read and thrown away.
void Bench::listBare() const {
  for (std::size_t first = 0; first < names_.size(); first += browser::modeBatch) {
    std::vector<std::string> words = {"ls", "-lnd", "--sort=none", "--group-directories-first"};
    const std::size_t end = std::min(names_.size(), first + browser::modeBatch);
    words.insert(words.end(), names_.begin() + static_cast<std::ptrdiff_t>(first),
                 names_.begin() + static_cast<std::ptrdiff_t>(end));
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) std::exit(2);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addchdir_np(&actions, (root_ + "/many").c_str());
    pid_t child = 0;
    if (posix_spawn(&child, "/usr/bin/ls", &actions, nullptr, arguments.data(), environ) != 0) std::exit(2);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    char buffer[1 << 16];
    while (read(ends[0], buffer, sizeof buffer) > 0) {
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
  }
}

void Bench::list() {
  frame_->fillDirPane();
  QApplication::processEvents();
}

double Bench::ratio(int rounds) {
  return bench::ratio(
      rounds, [this] { list(); }, [this] { listBare(); });
}

double Bench::selectAll() {
  const std::clock_t begin = std::clock();
  frame_->checkAll_Click();
  QApplication::processEvents();
  const double spent = 1e3 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
  if (selection_.selectedCount() != names_.size()) std::exit(2);
  return spent;
}

/// Shift+Down with 200 rows selected, the slowest of 20, in milliseconds.
double Bench::selectOneMore() {
  auto* const view = frame_->findChild<QAbstractItemView*>(QStringLiteral("DirPane"));
  view->setCurrentIndex(view->model()->index(0, 0));
  double slowest = 0;
  for (int i = 0; i < 220; ++i) {
    QElapsedTimer timer;
    timer.start();
    for (const QEvent::Type what : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent key(what, Qt::Key_Down, Qt::ShiftModifier);
      QApplication::sendEvent(view, &key);
    }
    QApplication::processEvents();
    if (i >= 200) slowest = std::max(slowest, static_cast<double>(timer.nsecsElapsed()) / 1e6);
  }
  if (selection_.selectedCount() != 221) std::exit(2);
  return slowest;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  bool kept = bench::report("2,000 files / bare ls runs", Bench(2000).ratio(20), 2);
  {
    Bench many(20000);
    kept &= bench::report("20,000 files / bare ls runs", many.ratio(5), 1.3);
    kept &= bench::report("Select All on 20,000 rows, ms of processor time", many.selectAll(), 100);
  }
  kept &= bench::report("100,000 files / bare ls runs", Bench(100000).ratio(3), 1.5);
  Bench most(200000);
  kept &= bench::report("200,000 files / bare ls runs", most.ratio(2), 1.2);
  kept &= bench::report("Shift+Down over 200 of 200,000 rows, ms", most.selectOneMore(), 20);
  return kept ? 0 : 1;
}
