// What counting sizes costs beside `du -sb`, and whether the windows go on meanwhile. Run it with
// QT_QPA_PLATFORM=offscreen. Ends with 1 when a bound is missed.

#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <thread>

#include "bench/Measure.h"
#include "bench/Nobody.h"
#include "browser/ui/frmProperties.h"

namespace {

namespace fs = std::filesystem;
using Items = std::vector<std::string>;

/// 100,000 files: in 1,000 folders ("tree"), and as the rows of one ("flat").
class Bench {
 public:
  Bench();
  double count(int rounds, const char* folder, const Items& items) const;
  double longestPause();  ///< milliseconds, of a window that counts all there is ten times
  double closing();       ///< milliseconds from the close of such a window until nobody reads any more

  const Items& rows() const { return rows_; }

 private:
  std::unique_ptr<browser::frmProperties> open();
  bool isRead() const;

  static constexpr std::uint64_t bytes_ = 1'900'000;
  bench::Folder folder_;
  std::string root_ = folder_.path();
  Items rows_;
  platform::DriveTable drives_{{{'C', root_}, {'Z', "/"}}};
  platform::Files files_{drives_};
  platform::Environment environment_{drives_, environ};
  platform::Registry registry_{root_ + "/user", root_ + "/site"};
  platform::UserSettings userSettings_{registry_};
  platform::HostCommandRunner commands_{drives_, environment_, "C:\\"};
  platform::Busy busy_;
  platform::System system_{drives_, files_, environment_, registry_, userSettings_, commands_, busy_};
  bench::Nobody user_;
  bench::LastLine log_;
  runtime::Settings settings_{registry_, userSettings_, log_};
  runtime::modAPI api_{system_, user_};
  runtime::CygwinEnvironment cygwin_{system_, api_, user_, "C:\\"};
};

Bench::Bench() {
  const std::string text = "some text of a file";
  fs::create_directory(root_ + "/flat");
  for (int i = 0; i < 1000; ++i) {
    const std::string inside = root_ + "/tree/" + std::to_string(i / 30) + "/folder " + std::to_string(i);
    fs::create_directories(inside);
    for (int j = 0; j < 100; ++j) {
      const std::string name = "file " + std::to_string(i * 100 + j);
      std::ofstream(inside + '/' + name) << text;
      std::ofstream(root_ + "/flat/" + name) << text;
      rows_.push_back("C:\\flat\\" + name);
    }
  }
}

double Bench::count(int rounds, const char* folder, const Items& items) const {
  const auto ours = [&] {
    const browser::SizeCount count(drives_, items);
    while (!count.soFar().ended) std::this_thread::sleep_for(std::chrono::microseconds(200));
    if (count.soFar().bytes != bytes_) std::exit(2);
  };
  const auto bare = [&] { bench::mustRun("du -sb '" + root_ + '/' + folder + "' >/dev/null"); };
  return bench::ratio(rounds, ours, bare);
}

std::unique_ptr<browser::frmProperties> Bench::open() {
  Items items = rows_;
  items.insert(items.end(), 10, "C:\\tree");
  auto form = std::make_unique<browser::frmProperties>(
      runtime::Services{system_, api_, cygwin_, user_, log_, settings_},
      browser::PropertiesRecord{"Properties", "100000 files, 1 folders", "C:\\", {}, ""}, std::move(items));
  form->show();
  return form;
}

double Bench::longestPause() {
  QElapsedTimer since;
  double longest = 0;
  since.start();
  const auto form = open();
  const auto* const size = form->findChild<QLabel*>("lblSize");
  while (!size->text().contains(QStringLiteral("19.93 MB"))) {
    QApplication::processEvents(QEventLoop::AllEvents, 1);
    longest = std::max(longest, static_cast<double>(since.nsecsElapsed()) / 1e6);
    since.restart();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return longest;
}

/// Whether this process has anything below the folder open.
bool Bench::isRead() const {
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd"))
    if (fs::read_symlink(entry.path(), gone).string().starts_with(root_ + "/tree")) return true;
  return false;
}

double Bench::closing() {
  const auto form = open();
  while (!isRead()) QApplication::processEvents();
  return bench::seconds([&] {
           form->close();
           while (isRead()) std::this_thread::yield();
         }) *
         1e3;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  Bench bench;
  bool kept = true;
  kept &= bench::report("size of 100,000 files in 1,000 folders / du -sb",
                        bench.count(11, "tree", {"C:\\tree"}), 1);
  kept &=
      bench::report("size of one folder of 100,000 files / du -sb", bench.count(11, "flat", {"C:\\flat"}), 1);
  kept &= bench::report("size of 100,000 rows / du -sb", bench.count(11, "flat", bench.rows()), 1);
  kept &= bench::report("longest pause of the window, ms", bench.longestPause(), 50);
  kept &= bench::report("closing while it counts, ms", bench.closing(), 50);
  return kept ? 0 : 1;
}
