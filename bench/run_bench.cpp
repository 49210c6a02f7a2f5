// What running a tool costs, each as a ratio to the bare system calls of the same run. Ends with 1 when a
// bound is missed.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "platform/Process.h"

namespace {

constexpr std::size_t outputSize = 100'000'000;
constexpr int shortTools = 500;
constexpr int rounds = 5;

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
    bench::forgetPeak();
    const std::size_t idle = bench::memory("VmRSS");
    captureMuch();
    return static_cast<double>(bench::memory("VmHWM") - idle) / outputSize;
  }

  platform::DriveTable drives_{{{'Z', "/"}}};
  platform::Environment environment_{drives_, environ};
  platform::HostCommandRunner runner_{drives_, environment_, "Z:\\usr\\bin"};
};

bool RunBench::all() {
  bool kept = bench::report("peak memory of a 100 MB capture / output", peak(), 2.2);
  kept &= bench::report("time of a 100 MB capture / bare read loop",
                        bench::ratio(
                            rounds, [this] { captureMuch(); }, readBare),
                        1.3);
  kept &= bench::report("500 short tools / bare start and wait",
                        bench::ratio(
                            rounds, [this] { captureMany(); }, startManyBare),
                        1.3);
  const std::vector<char> resident(std::size_t{1} << 30, 'x');
  kept &= bench::report("the same with 1 GB of our own memory",
                        bench::ratio(
                            rounds, [this] { captureMany(); }, startManyBare),
                        1.3);
  return kept && resident.back() == 'x';
}

}  // namespace

int main() { return RunBench().all() ? 0 : 1; }
