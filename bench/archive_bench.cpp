// What packing and extracting 200 MB costs, and extracting 100,000 small files in memory, as ratios to the
// same tar commands run by hand with the plain compressors. Ends with 1 when a bound is missed. Usage:
// archive_bench BUILD-FOLDER (whose program and tools are measured)

#include <unistd.h>

#include <filesystem>
#include <string>

#include "archive/ExtractJob.h"
#include "archive/PackJob.h"
#include "bench/Measure.h"
#include "shell/BatchTools.h"
#include "shell/BatchUser.h"
#include "shell/Program.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t dataSize = 200'000'000;
constexpr std::uintmax_t leastSize = 200'000;
constexpr std::uintmax_t greatestSize = 1'000'000;
constexpr int smallFiles = 100'000;
constexpr int rounds = 5;

/// Real files of some size, as many as fit: programs, libraries, texts.
void fillWithFiles(const fs::path& folder) {
  std::uintmax_t total = 0;
  int number = 0;
  for (const char* source : {"/usr/bin", "/usr/share/doc", "/usr/include", "/usr/lib"}) {
    const auto options = fs::directory_options::skip_permission_denied;
    for (const auto& entry : fs::recursive_directory_iterator(source, options)) {
      if (entry.is_symlink() || !entry.is_regular_file()) continue;
      const std::uintmax_t size = entry.file_size();
      if (size < leastSize || size > greatestSize || total + size > dataSize) continue;
      const fs::path into = folder / std::to_string(number % 50);
      fs::create_directories(into);
      fs::copy_file(entry.path(), into / std::to_string(number++));
      total += size;
    }
  }
  std::printf("%d files, %.1f MB\n", number, static_cast<double>(total) / 1e6);
}

void fillWithSmallFiles(const fs::path& folder) {
  for (int i = 0; i < smallFiles; ++i) {
    const std::string into = folder / ("folder " + std::to_string(i / 100));
    if (i % 100 == 0) fs::create_directories(into);
    std::ofstream(into + "/file " + std::to_string(i)) << i;
  }
}

class Nobody : public archive::OverwriteAsker {
  archive::OverwriteAnswer ask(const archive::OverwriteQuestion&) override { std::exit(2); }
};

class Unwatched : public archive::ListingProgress {
  void showPercent(float) override {}
};

class ArchiveBench {
 public:
  ArchiveBench(const std::string& build, const fs::path& parent, void (*fill)(const fs::path&))
      : work_(parent),
        programFile_(build + "/pakrune"),
        program_(host_.system(), host_.drives.toWindows(build) + "\\", user_) {
    shell::prepareTools(program_);
    fill(work_ / "data");
    packByHand(".tgz", "z");
  }

  bool packing(const std::string& extension, const std::string& letter) {
    return bench::report("packing " + extension + " / tar by hand",
                         bench::ratio(
                             rounds, [&] { pack(extension); }, [&] { packByHand(extension, letter); }),
                         0.6);
  }
  bool batchPacking() {
    const auto pack = [this] { run(" --batch --yes -qpack " + work_.path() + " data"); };
    return bench::report("-qpack / tar by hand",
                         bench::ratio(rounds, pack, [this] { packByHand(".tgz", "z"); }), 0.6);
  }
  bool extraction(const std::string& what, double bound) {
    const archive::ArchiveTree tree =
        archive::ListingJob(program_.services(), archivePath(), unwatched_).run().tree;
    const auto extract = [&] {
      archive::ExtractJob job(program_.services(), nobody_, unwatched_,
                              {archive::Extract::All, archivePath(), outPath_, tree});
      if (job.run().end != runtime::JobEnd::Done) std::exit(2);
    };
    const double all = bench::ratio(
        rounds, extract, [this] { extractByHand(); }, [this] { emptyOut(); });
    return bench::report("Extract All, " + what + " / tar by hand", all, bound);
  }
  bool batchExtraction(const std::string& what, double bound) {
    const auto extract = [this] {
      run(" --batch --yes -extract " + work_.path() + " by-hand.tgz " + (work_ / "out"));
    };
    const double whole = bench::ratio(
        rounds, extract, [this] { extractByHand(); }, [this] { emptyOut(); });
    return bench::report("-extract, " + what + " / tar by hand", whole, bound);
  }

 private:
  void run(const std::string& words) const { bench::mustRun(programFile_ + words + " >/dev/null 2>&1"); }
  void pack(const std::string& extension) {
    archive::PackSettings settings;
    const std::string folder = host_.drives.toWindows(work_.path());
    settings.outputPath = folder + "\\ours" + extension;
    settings.contentsOnly = false;
    archive::PackJob job(program_.services(), {folder, {folder + "\\data"}, {}}, settings);
    if (job.run().end != runtime::JobEnd::Done) std::exit(2);
  }
  void packByHand(const std::string& extension, const std::string& letter) const {
    bench::mustRun("PATH=/usr/bin:/bin tar -C " + work_.path() + " -" + letter +
                   "cv --owner=500 --group=1 --numeric-owner -f " + (work_ / ("by-hand" + extension)) +
                   " data >/dev/null");
  }
  void extractByHand() {
    bench::mustRun("PATH=/usr/bin:/bin tar -i -C " + (work_ / "out") + " -zxv --preserve-permissions -f " +
                   (work_ / "by-hand.tgz") + " >/dev/null");
  }
  std::string archivePath() const { return host_.drives.toWindows(work_ / "by-hand.tgz"); }
  void emptyOut() const {
    fs::remove_all(work_ / "out");
    fs::create_directory(work_ / "out");
    sync();  // what earlier runs wrote is not this one's to wait for
  }

  bench::Folder work_;
  std::string programFile_;
  shell::Host host_;
  shell::BatchUser user_{true};
  shell::Program program_;
  std::string outPath_ = host_.drives.toWindows(work_ / "out");
  Nobody nobody_;
  Unwatched unwatched_;
};

}  // namespace

int main(int count, char** words) {
  if (count != 2) return 2;
  const bench::Folder settings;
  setenv("XDG_CONFIG_HOME", settings.path().c_str(), 1);
  const std::string build = fs::absolute(words[1]).lexically_normal().string();
  ArchiveBench archives(build, fs::temp_directory_path(), fillWithFiles);
  bool kept = archives.packing(".tbz2", "j");
  kept &= archives.packing(".tgz", "z");
  kept &= archives.batchPacking();
  kept &= archives.extraction("200 MB", 0.6);
  kept &= archives.batchExtraction("200 MB", 0.9);
  ArchiveBench small(build, "/dev/shm", fillWithSmallFiles);
  kept &= small.extraction("100,000 small files", 1.1);
  kept &= small.batchExtraction("100,000 small files", 1.5);
  return kept ? 0 : 1;
}
