#pragma once

#include <grp.h>
#include <poll.h>

#include <cerrno>
#include <functional>

#include "platform/ConfinementWords.h"
#include "platform/Descriptor.h"
#include "tests/OnDisk.h"

namespace tests {

namespace fs = std::filesystem;

/// Who runs the launcher; whoever is not root himself is himself in both cases.
enum class Who { Root, User };
constexpr uid_t nobody = 65534;
constexpr gid_t supplementary = 4242;  ///< a group that the user is in as well

inline void become(Who who) {
  if (who == Who::Root || geteuid() != 0) return;
  if (setgroups(1, &supplementary) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0) _exit(99);
}

/// A launcher that was started, in a process group of its own.
struct Launched {
  pid_t process;
  platform::Descriptor output;
  platform::Descriptor report;

  std::string text() const {
    std::string all;
    char buffer[4096];
    for (ssize_t size; (size = read(output.get(), buffer, sizeof buffer)) > 0;)
      all.append(buffer, static_cast<std::size_t>(size));
    return all;
  }
  int status() const {  ///< as waitpid gives it
    int status = -1;
    waitpid(process, &status, 0);
    return status;
  }
  int systemError() const {  ///< 0: the tool was executed
    int error = 0;
    return read(report.get(), &error, sizeof error) == sizeof error ? error : 0;
  }
};

/// The launcher and the tampering tool, where everybody may execute them.
class LauncherTest : public testworld::World {
 protected:
  using Words = std::vector<std::string>;

  LauncherTest() {
    fs::permissions(root_, fs::perms(0755));
    fs::copy_file(built("bin/confine"), launcher());
    fs::copy_file(built("tests/tamper"), root_ + "/tamper");
    fs::create_directory(in());
  }
  std::string launcher() const { return root_ + "/confine"; }
  std::string in() const { return root_ + "/in"; }
  std::string out() const { return root_ + "/out"; }

  /// `before` runs in the new process while it is still the tests' user.
  Launched start(
      Who who, const Words& words, const Words& tool, const std::function<void()>& before = [] {}) const {
    int output[2];
    int report[2];
    if (pipe2(output, O_CLOEXEC) != 0 || pipe2(report, O_CLOEXEC) != 0) abort();
    Words all{launcher(), platform::parentWord + std::to_string(getpid()), platform::reportWord};
    all.insert(all.end(), words.begin(), words.end());
    all.insert(all.end(), {"--", tool.front()});
    all.insert(all.end(), tool.begin(), tool.end());
    const platform::Descriptor written(output[1]), reported(report[1]);
    const pid_t process = fork();
    if (process == 0) {
      setpgid(0, 0);
      before();
      become(who);
      execute(all, output[1], report[1]);
    }
    setpgid(process, process);
    return {process, platform::Descriptor(output[0]), platform::Descriptor(report[0])};
  }
  bool offers(Who who, const Words& words) const {
    return start(who, words, {launcher(), platform::probeWord}).status() == 0;
  }
  /// All layers that this system offers to whoever runs the tests, and the folder of the run.
  Words everything() const {
    Words words{platform::writeWord + in()};
    for (const char* const word :
         {platform::mountsWord, platform::processesWord, platform::landlockWord, platform::callsWord}) {
      words.emplace_back(word);
      if (!offers(Who::Root, words)) words.pop_back();
    }
    return words;
  }

 private:
  [[noreturn]] static void execute(Words& words, int output, int report) {
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const int high = fcntl(report, F_DUPFD_CLOEXEC, 20);
    dup2(output, STDOUT_FILENO);
    dup2(high, platform::reportDescriptor);
    dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    execv(pointers.front(), pointers.data());
    _exit(98);
  }
};

/// Whether the last process that could write into the pipe ends.
inline bool writersEnd(const platform::Descriptor& pipe) {
  pollfd waited{pipe.get(), 0, 0};
  return poll(&waited, 1, 20'000) == 1 && (waited.revents & POLLHUP) != 0;
}

}  // namespace tests
