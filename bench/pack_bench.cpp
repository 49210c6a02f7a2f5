// What packing 200 MB costs, as a ratio to the same tar command run by hand with the plain compressors. Ends
// with 1 when a bound is missed. Usage: pack_bench BUILD-FOLDER (whose bin/ holds the tools)

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "archive/PackRunner.h"
#include "shell/BatchUser.h"
#include "shell/Program.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t dataSize = 200'000'000;
constexpr int rounds = 5;
constexpr double bound = 0.6;

double seconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Real files, as many as fit: programs, libraries, texts.
void fillWithFiles(const fs::path& folder) {
  std::uintmax_t total = 0;
  int number = 0;
  for (const char* source : {"/usr/bin", "/usr/share/doc", "/usr/include", "/usr/lib"}) {
    const auto options = fs::directory_options::skip_permission_denied;
    for (const auto& entry : fs::recursive_directory_iterator(source, options)) {
      if (entry.is_symlink() || !entry.is_regular_file() || total + entry.file_size() > dataSize) continue;
      const fs::path into = folder / std::to_string(number % 50);
      fs::create_directories(into);
      fs::copy_file(entry.path(), into / std::to_string(number++));
      total += entry.file_size();
    }
  }
  std::printf("%d files, %.1f MB\n", number, static_cast<double>(total) / 1e6);
}

class PackBench {
 public:
  explicit PackBench(const std::string& buildFolder)
      : program_(host_.system(), host_.drives.toWindows(buildFolder) + "\\", user_) {
    program_.cygwin.FindCygwinRoot();
    program_.cygwin.CheckCygwinTools();
    fillWithFiles(folder_ / "data");
  }
  ~PackBench() { fs::remove_all(folder_); }
  PackBench(const PackBench&) = delete;
  PackBench& operator=(const PackBench&) = delete;

  bool holds(const std::string& extension, const std::string& letter) {
    std::vector<double> ours;
    std::vector<double> byHand;
    for (int i = 0; i < rounds; ++i) {
      byHand.push_back(seconds([&] { packByHand(extension, letter); }));
      ours.push_back(seconds([&] { pack(extension); }));
    }
    std::sort(ours.begin(), ours.end());
    std::sort(byHand.begin(), byHand.end());
    const double ratio = ours[rounds / 2] / byHand[rounds / 2];
    std::printf("%s: %.2f s, by hand %.2f s: %.2f (at most %.2f)%s\n", extension.c_str(), ours[rounds / 2],
                byHand[rounds / 2], ratio, bound, ratio <= bound ? "" : "  MISSED");
    return ratio <= bound;
  }

 private:
  void pack(const std::string& extension) {
    archive::PackSettings settings;
    const std::string folder = host_.drives.toWindows(folder_.string());
    settings.outputPath = folder + "\\ours" + extension;
    settings.contentsOnly = false;
    archive::PackRunner runner(program_.services());
    if (runner.create(settings, {folder, {folder + "\\data"}, {}}) != archive::PackOutcome::Created)
      std::exit(2);
  }
  void packByHand(const std::string& extension, const std::string& letter) const {
    const std::string command = "PATH=/usr/bin:/bin tar -C " + folder_.string() + " -" + letter +
                                "cv --owner=500 --group=1 --numeric-owner -f " + folder_.string() +
                                "/by-hand" + extension + " data >/dev/null";
    if (std::system(command.c_str()) != 0) std::exit(2);
  }
  static fs::path newFolder() {
    std::string name = fs::temp_directory_path() / "pakrune-bench-XXXXXX";
    return mkdtemp(name.data());
  }

  fs::path folder_ = newFolder();
  shell::Host host_;
  shell::BatchUser user_{true};
  shell::Program program_;
};

}  // namespace

int main(int count, char** words) {
  if (count != 2) return 2;
  PackBench bench(fs::absolute(words[1]).string());
  const bool gzip = bench.holds(".tgz", "z");
  return bench.holds(".tbz2", "j") && gzip ? 0 : 1;
}
