// What opening an archive of 100,000 or 1,000,000 entries costs, from the click on "Refresh Contents" to the
// shown tree: as a ratio to `tar -tvzf` of the same file, in memory, and in how long the window stands still.
// Ends with 1 when a bound is missed. Usage: QT_QPA_PLATFORM=offscreen open_bench BUILD-FOLDER (whose tools
// are used)

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>
#include <filesystem>
#include <string>

#include "bench/Measure.h"
#include "platform/desktop/Gate.h"
#include "platform/desktop/Text.h"
#include "shell/BatchTools.h"
#include "shell/ui/DesktopUser.h"
#include "shell/ui/frmMain.h"

namespace {

namespace fs = std::filesystem;

constexpr int entries = 100'000;

struct Bounds {
  int rounds;
  double times;          ///< as long as `tar -tvzf`
  double beyondListing;  ///< MB at the peak
  double peak;           ///< MB of the whole program
};
constexpr Bounds usual{5, 0.8, 60, 350};
constexpr Bounds million{3, 1.2, 350, 350};

/// A corner of the window that is painted as often as the program lets it, and how long it once was not.
class Corner : public QWidget {
 public:
  using QWidget::QWidget;
  double longestGap = 0;  ///< milliseconds

 protected:
  void paintEvent(QPaintEvent*) override {
    const auto now = std::chrono::steady_clock::now();
    longestGap = std::max(longestGap, std::chrono::duration<double, std::milli>(now - last_).count());
    last_ = now;
    update();
  }

 private:
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

class OpenBench {
 public:
  explicit OpenBench(const std::string& build)
      : program_(host_.system(), host_.drives.toWindows(build) + "\\", user_), pickers_(host_.drives) {
    shell::prepareTools(program_);
    window_.show();
    window_.cmdExtract_Click();
    QApplication::processEvents();
  }

  bool holds(const char* what, const std::string& archive, const Bounds& bounds) {
    box_->setText(platform::desktop::toControl(host_.drives.toWindows(archive)));
    const std::size_t listing = listingSize(archive);
    const auto bare = [&] { bench::mustRun("PATH=/usr/bin:/bin tar -tvzf " + archive + " >/dev/null"); };
    // Memory first, while the heap has not grown yet.
    const double used = megabytesAtPeak(listing);
    bool kept =
        bench::report(std::string(what) + ": MB at the peak, beyond the listing", used, bounds.beyondListing);
    const double peak = static_cast<double>(bench::memory("VmHWM")) / 1e6;
    kept &= bench::report(std::string(what) + ": MB at the peak", peak, bounds.peak);
    const double times = bench::ratio(
        bounds.rounds, [this] { refresh(); }, bare);
    kept &= bench::report(std::string(what) + ": click to shown tree / tar -tvzf", times, bounds.times);
    return bench::report(std::string(what) + ": ms without a repaint", longestGap(), 100) && kept;
  }

 private:
  template <typename T>
  T* control(const char* name) {
    return window_.findChild<T*>(QString::fromLatin1(name));
  }
  void refresh() {
    control<QPushButton>("cmdRefresh")->click();
    QApplication::processEvents();
    if (!tree_->isVisible() || tree_->model()->rowCount() == 0) std::exit(2);
  }
  std::size_t listingSize(const std::string& archive) const {
    bench::mustRun("tar -tvzf " + archive + " >" + archive + ".listing");
    return fs::file_size(archive + ".listing");
  }
  double megabytesAtPeak(std::size_t listing) {
    box_->setFocus();
    bench::forgetPeak();
    const std::size_t idle = bench::memory("VmRSS");
    refresh();
    const double peak = static_cast<double>(bench::memory("VmHWM") - idle);
    std::printf("  (listing %.1f MB; idle %.1f MB, peak %.1f MB, afterwards %.1f MB)\n",
                static_cast<double>(listing) / 1e6, static_cast<double>(idle) / 1e6,
                (peak + static_cast<double>(idle)) / 1e6, static_cast<double>(bench::memory("VmRSS")) / 1e6);
    return (peak - static_cast<double>(listing)) / 1e6;
  }
  double longestGap() {
    Corner corner(&window_);
    corner.resize(8, 8);
    corner.show();
    QApplication::processEvents();
    corner.longestGap = 0;
    refresh();
    return corner.longestGap;
  }

  shell::Host host_;
  shell::DesktopUser user_{host_.busy};
  platform::desktop::Gate gate_{host_.busy};
  shell::Program program_;
  platform::desktop::DesktopFilePickers pickers_;
  shell::frmMain window_{program_, pickers_};
  QLineEdit* box_ = control<QLineEdit>("txtFileIn");
  QTreeView* tree_ = control<QTreeView>("tarTree");
};

/// Makes small files, `perFolder` in each folder.
std::string filesIn(const bench::Folder& work, const std::string& name, int perFolder) {
  const std::string folder = work / name;
  for (int i = 0; i < entries; ++i) {
    const std::string into =
        folder + "/part " + std::to_string(i / perFolder % 10) + "/folder " + std::to_string(i / perFolder);
    if (i % perFolder == 0) fs::create_directories(into);
    std::ofstream(into + "/file number " + std::to_string(i) + ".txt") << i;
  }
  return folder;
}

std::string packed(const bench::Folder& work, const std::string& name) {
  const std::string archive = work / (name + ".tgz");
  bench::mustRun("tar -C " + work.path() + " -czf " + archive + " " + name);
  return archive;
}

/// What the one folder holds, without it.
std::string packedContents(const std::string& folder) {
  bench::mustRun("cd '" + folder + "/part 0/folder 0' && ls | tar -czf " + folder + "-top.tgz -T -");
  return folder + "-top.tgz";
}

/// Ten times a folder, as one archive.
std::string packedTenTimes(const bench::Folder& work, const std::string& name) {
  const std::string archive = work / "million.tgz";
  bench::mustRun("{ for i in 0 1 2 3 4 5 6 7 8 9; do tar -C " + work.path() +
                 " -b 1 -c --transform=s,^,$i/, " + name +
                 " | head -c -1024; done; head -c 10240 /dev/zero; } | gzip >" + archive);
  return archive;
}

}  // namespace

int main(int count, char** words) {
  if (count != 2) return 2;
  const bench::Folder work;
  setenv("XDG_CONFIG_HOME", (work / "config").c_str(), 1);
  int one = 1;
  QApplication application(one, words);
  filesIn(work, "nested", 100);
  const std::string flatFolder = filesIn(work, "flat", entries);
  const std::string build = fs::absolute(words[1]).lexically_normal().string();
  // A window each, so that none finds the memory of the other's.
  bool kept = OpenBench(build).holds("nested", packed(work, "nested"), usual);
  kept &= OpenBench(build).holds("all in one folder", packed(work, "flat"), usual);
  kept &= OpenBench(build).holds("all at the top", packedContents(flatFolder), usual);
  kept &= OpenBench(build).holds("1,000,000", packedTenTimes(work, "nested"), million);
  return kept ? 0 : 1;
}
