// What running a tool costs, each as a ratio to the bare system calls of the same run. Ends with 1 when a
// bound is missed.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "platform/Process.h"

namespace {

constexpr std::size_t outputSize = 100'000'000;
constexpr int shortTools = 500;
constexpr int rounds = 5;

using Clock = std::chrono::steady_clock;

double seconds(const std::function<void()>& work) {
  const auto begin = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// The ratio of the medians of interleaved runs.
double ratio(const std::function<void()>& ours, const std::function<void()>& bare) {
  std::vector<double> a;
  std::vector<double> b;
  for (int i = 0; i < rounds; ++i) {
    b.push_back(seconds(bare));
    a.push_back(seconds(ours));
  }
  std::sort(a.begin(), a.end());
  std::sort(b.begin(), b.end());
  std::printf("  (medians: %.1f ms, bare %.1f ms)\n", a[rounds / 2] * 1e3, b[rounds / 2] * 1e3);
  return a[rounds / 2] / b[rounds / 2];
}

bool report(const char* what, double value, double bound) {
  std::printf("%-50s %.2f (at most %.2f)%s\n", what, value, bound, value <= bound ? "" : "  MISSED");
  return value <= bound;
}

pid_t startBare(const char* program, std::vector<std::string> arguments,
                posix_spawn_file_actions_t* actions) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawn(&child, program, actions, nullptr, pointers.data(), environ) != 0) std::exit(2);
  return child;
}

void readBare() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) std::exit(2);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  const pid_t child =
      startBare("/usr/bin/head", {"head", "-c", std::to_string(outputSize), "/dev/zero"}, &actions);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::vector<char> buffer(1 << 16);
  std::size_t total = 0;
  for (ssize_t got = 0; (got = read(ends[0], buffer.data(), buffer.size())) > 0;)
    total += static_cast<std::size_t>(got);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  if (total != outputSize) std::exit(2);
}

void startManyBare() {
  for (int i = 0; i < shortTools; ++i) waitpid(startBare("/usr/bin/true", {"true"}, nullptr), nullptr, 0);
}

/// Bytes, from a line of /proc/self/status.
std::size_t memory(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == name + ":" && status >> kilobytes) return kilobytes * 1024;
  }
  std::exit(2);
}

class RunBench {
 public:
  bool all();

 private:
  void captureMuch() {
    const auto result = runner_.capture({"head -c " + std::to_string(outputSize) + " /dev/zero", "Z:\\", ""},
                                        [] { return true; });
    if (result.status != 0 || result.text.size() != outputSize) std::exit(2);
  }
  void captureMany() {
    for (int i = 0; i < shortTools; ++i) {
      if (runner_.capture({"true", "Z:\\", ""}, [] { return true; }).status != 0) std::exit(2);
    }
  }
  double peak() {
    std::ofstream("/proc/self/clear_refs") << "5";  // the high-water mark starts again
    const std::size_t idle = memory("VmRSS");
    captureMuch();
    return static_cast<double>(memory("VmHWM") - idle) / outputSize;
  }

  platform::DriveTable drives_{{{'Z', "/"}}};
  platform::Environment environment_{drives_, environ};
  platform::HostCommandRunner runner_{drives_, environment_, "Z:\\usr\\bin"};
};

bool RunBench::all() {
  bool kept = report("peak memory of a 100 MB capture / output", peak(), 2.2);
  kept &=
      report("time of a 100 MB capture / bare read loop", ratio([this] { captureMuch(); }, readBare), 1.3);
  kept &=
      report("500 short tools / bare start and wait", ratio([this] { captureMany(); }, startManyBare), 1.3);
  const std::vector<char> resident(std::size_t{1} << 30, 'x');
  kept &=
      report("the same with 1 GB of our own memory", ratio([this] { captureMany(); }, startManyBare), 1.3);
  return kept && resident.back() == 'x';
}

}  // namespace

int main() { return RunBench().all() ? 0 : 1; }
