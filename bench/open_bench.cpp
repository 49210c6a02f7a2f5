// What opening an archive of 100,000 entries costs, from the click on "Refresh Contents" to the shown tree:
// as a ratio to `tar -tvzf` of the same file, in memory, and in how long the window stands still. Ends with 1
// when a bound is missed. Usage: QT_QPA_PLATFORM=offscreen open_bench BUILD-FOLDER (whose tools are used)

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
constexpr int rounds = 5;

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

  bool holds(const char* what, const std::string& archive) {
    box_->setText(platform::desktop::toControl(host_.drives.toWindows(archive)));
    const std::size_t listing = listingSize(archive);
    const auto bare = [&] { bench::mustRun("PATH=/usr/bin:/bin tar -tvzf " + archive + " >/dev/null"); };
    // Memory first, while the heap has not grown yet.
    const double used = megabytesAtPeak(listing);
    bool kept = bench::report(std::string(what) + ": MB at the peak, beyond the listing", used, 60);
    const double times = bench::ratio(
        rounds, [this] { refresh(); }, bare);
    kept &= bench::report(std::string(what) + ": click to shown tree / tar -tvzf", times, 1.5);
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

/// Packs small files, `perFolder` in each folder.
std::string archiveOf(const bench::Folder& work, const std::string& name, int perFolder) {
  const std::string folder = work / name;
  for (int i = 0; i < entries; ++i) {
    const std::string into =
        folder + "/part " + std::to_string(i / perFolder % 10) + "/folder " + std::to_string(i / perFolder);
    if (i % perFolder == 0) fs::create_directories(into);
    std::ofstream(into + "/file number " + std::to_string(i) + ".txt") << i;
  }
  bench::mustRun("tar -C " + work.path() + " -czf " + folder + ".tgz " + name);
  fs::remove_all(folder);
  return folder + ".tgz";
}

}  // namespace

int main(int count, char** words) {
  if (count != 2) return 2;
  const bench::Folder work;
  setenv("XDG_CONFIG_HOME", (work / "config").c_str(), 1);
  int one = 1;
  QApplication application(one, words);
  const std::string nested = archiveOf(work, "nested", 100);
  const std::string flat = archiveOf(work, "flat", entries);
  const std::string build = fs::absolute(words[1]).lexically_normal().string();
  // A window each, so that none finds the memory of the other's.
  const bool nestedHolds = OpenBench(build).holds("nested", nested);
  return OpenBench(build).holds("all in one folder", flat) && nestedHolds ? 0 : 1;
}
