// What permissions, their preview and line ends cost beside the plain tools. Run it with
// QT_QPA_PLATFORM=offscreen; the argument is the build folder. Ends with 1 when a bound is missed.

#include <fcntl.h>
#include <unistd.h>

#include <QApplication>
#include <QLineEdit>
#include <chrono>

#include "bench/Measure.h"
#include "bench/Nobody.h"
#include "perms/ui/frmPreview.h"
#include "runtime/IsExecutable.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Notes the longest time between two moments at which a window could repaint.
class Watch : public bench::Nobody {
 public:
  void letEventsRun() override {
    note();
    Nobody::letEventsRun();
    last_ = Clock::now();
  }

  void begin() {
    last_ = Clock::now();
    longest_ = 0;
  }
  void note() {
    longest_ = std::max(longest_, std::chrono::duration<double, std::milli>(Clock::now() - last_).count());
  }
  double longest() const { return longest_; }  ///< milliseconds

 private:
  Clock::time_point last_ = Clock::now();
  double longest_ = 0;
};

/// 100,000 files in 1,000 folders; one in twenty is an executable by its name, one in twenty by its bytes.
class Bench {
 public:
  explicit Bench(const std::string& build);
  double automatic(int rounds);
  double preview(int rounds);
  double longestPause();  ///< milliseconds

 private:
  void firstBytes() const;

  bench::Folder folder_;
  std::string root_ = folder_.path();
  std::vector<std::string> undecided_;
  platform::DriveTable drives_{{{'C', root_}, {'Z', "/"}}};
  platform::Files files_{drives_};
  platform::Environment environment_{drives_, environ};
  platform::Registry registry_{root_ + "/user", root_ + "/site"};
  platform::UserSettings userSettings_{registry_};
  platform::HostCommandRunner commands_;
  platform::Busy busy_;
  platform::System system_{drives_, files_, environment_, registry_, userSettings_, commands_, busy_};
  Watch user_;
  bench::LastLine log_;
  runtime::Settings settings_{registry_, userSettings_, log_};
  runtime::modAPI api_{system_, user_};
  runtime::CygwinEnvironment cygwin_;
  runtime::Services services_{system_, api_, cygwin_, user_, log_, settings_};
  perms::PermissionItems items_{{"C:\\tree"}, true, "C:\\", "tree"};
};

Bench::Bench(const std::string& build)
    : commands_(drives_, environment_, drives_.toWindows(build)),
      cygwin_(system_, api_, user_, drives_.toWindows(build) + "\\") {
  for (int i = 0; i < 1000; ++i) {
    const std::string inside = root_ + "/tree/folder " + std::to_string(i);
    fs::create_directories(inside);
    for (int j = 0; j < 100; ++j) {
      const std::string name = inside + "/file" + std::to_string(j) + (j % 20 == 0 ? ".sh" : ".dat");
      std::ofstream(name) << (j % 20 == 1 ? "#!/bin/sh\n" : "some text of a file\n");
      if (!runtime::IsExecutableName(name)) undecided_.push_back(name);
    }
  }
  cygwin_.AddDotToPath();
  cygwin_.FindCygwinRoot();
  cygwin_.CheckCygwinTools();
}

void Bench::firstBytes() const {
  char bytes[10];
  std::size_t total = 0;
  for (const std::string& name : undecided_) {
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    total += static_cast<std::size_t>(read(file, bytes, sizeof bytes));
    close(file);
  }
  if (total != undecided_.size() * sizeof bytes) std::exit(2);
}

double Bench::automatic(int rounds) {
  const std::string tree = '\'' + root_ + "/tree'";
  const auto ours = [this] {
    const auto result = perms::PermissionJob(services_, items_, {true, {}, true}).run();
    if (result.end != runtime::JobEnd::Done || result.undo.entries.size() < 100'000) std::exit(2);
  };
  const auto bare = [&] {
    bench::mustRun("find " + tree + " ! -type l -type d -exec chmod 755 {} +");
    bench::mustRun("find " + tree + " ! -type l ! -type d -exec chmod 644 {} +");
    firstBytes();
  };
  return bench::ratio(rounds, ours, bare, [&] { bench::mustRun("chmod -R 700 " + tree); });
}

double Bench::longestPause() {
  perms::frmPreview preview(services_);
  user_.begin();
  preview.fill(items_, {true, {}, true});
  user_.letEventsRun();
  for (const char* text : {"f", "file99", "nothing", ""}) {
    preview.findChild<QLineEdit*>("txtNarrow")->setText(QLatin1String(text));
    user_.letEventsRun();
  }
  return user_.longest();
}

double Bench::preview(int rounds) {
  const std::string find = "find '" + root_ + "/tree' -printf '%m %p\\n' >/dev/null";
  return bench::ratio(
      rounds,
      [this] {
        perms::frmPreview preview(services_);
        preview.fill(items_, {true, {}, true});
      },
      [&] {
        bench::mustRun(find);
        firstBytes();
      });
}

/// 200 MB of lines of 40 bytes in memory, where a sync costs nothing.
double bigFile(const std::string& build) {
  const bench::Folder folder;
  const std::string made = folder / "made";
  const std::string text = folder / "text";
  bench::mustRun("yes '123456789 123456789 123456789 12345678\r' | head -c 200000000 >'" + made + "'");
  const auto copy = [&] { bench::mustRun("cp '" + made + "' '" + text + "'"); };
  return bench::ratio(
      5, [&] { bench::mustRun(build + "/bin/dos2unix.exe --safe -U '" + text + "' >/dev/null"); },
      [&] { bench::mustRun("tr -d '\\r' <'" + text + "' >'" + text + ".new'"); }, copy);
}

/// 20,000 small files in memory, all of them to be converted.
double smallFiles(const std::string& build) {
  const bench::Folder folder;
  const std::string made = folder / "made";
  const std::string work = folder / "work";
  fs::create_directory(made);
  for (int i = 0; i < 20000; ++i) std::ofstream(made + "/file" + std::to_string(i)) << "one\r\ntwo\r\n";
  const auto copy = [&] {
    bench::mustRun("rm -rf '" + work + "' '" + work + "2'; cp -r '" + made + "' '" + work + "'");
  };
  return bench::ratio(
      5,
      [&] {
        bench::mustRun("cd '" + work + "' && ls | xargs -s 1500000 -n 20000 " + build +
                       "/bin/dos2unix.exe --safe -U >/dev/null");
      },
      [&] { bench::mustRun("cp -r '" + work + "' '" + work + "2'"); }, copy);
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::string build = fs::absolute(argc > 1 ? argv[1] : "build");
  bool kept = true;
  {
    Bench tree(build);
    kept &= bench::report("automatic permissions / two finds and the first bytes", tree.automatic(5), 1.3);
    kept &= bench::report("preview of 100,000 / find -printf and the first bytes", tree.preview(5), 1.3);
    kept &= bench::report("longest pause of the preview, ms", tree.longestPause(), 100);
  }
  setenv("TMPDIR", "/dev/shm", 1);
  kept &= bench::report("dos2unix of 200 MB / tr -d", bigFile(build), 0.6);
  kept &= bench::report("dos2unix of 20,000 files / cp -r", smallFiles(build), 2);
  return kept ? 0 : 1;
}
