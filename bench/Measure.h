#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace bench {

template <typename Work>
double seconds(const Work& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

inline void nothing() {}

/// The ratio of the medians of interleaved runs: ours to what it is measured by. `prepare` runs before each
/// and does not count.
template <typename Ours, typename Bare, typename Prepare = void (*)()>
double ratio(int rounds, const Ours& ours, const Bare& bare, const Prepare& prepare = nothing) {
  std::vector<double> oursTimes;
  std::vector<double> bareTimes;
  for (int i = 0; i < rounds; ++i) {
    prepare();
    bareTimes.push_back(seconds(bare));
    prepare();
    oursTimes.push_back(seconds(ours));
  }
  std::printf("  (medians: %.1f ms, bare %.1f ms)\n", median(oursTimes) * 1e3, median(bareTimes) * 1e3);
  return median(oursTimes) / median(bareTimes);
}

/// Prints a line; false when the bound is missed.
inline bool report(const std::string& what, double value, double bound) {
  std::printf("%-62s %.2f (at most %.2f)%s\n", what.c_str(), value, bound, value <= bound ? "" : "  MISSED");
  std::fflush(stdout);
  return value <= bound;
}

/// A command that must succeed, with the shell's rules.
inline void mustRun(const std::string& command) {
  if (std::system(command.c_str()) == 0) return;
  std::fprintf(stderr, "failed: %s\n", command.c_str());
  std::exit(2);
}

/// Bytes, from a line of /proc/self/status.
inline std::size_t memory(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == name + ":" && status >> kilobytes) return kilobytes * 1024;
  }
  std::exit(2);
}

/// Starts the high-water mark (VmHWM) again.
inline void forgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

/// A temporary folder with what stands in it.
class Folder {
 public:
  explicit Folder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string name = parent / "pakrune-bench-XXXXXX";
    path_ = mkdtemp(name.data());
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

}  // namespace bench
