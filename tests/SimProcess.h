#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

/// A request as it goes over the wire: each field ended by a NUL.
inline std::string requestOf(std::initializer_list<std::string> fields) {
  std::string bytes;
  for (const std::string& field : fields) bytes += field + '\0';
  return bytes;
}

/// The terminal simulator on a free loopback port with a root of its own.
class SimProcess {
 public:
  /// `options`: separated by blanks, on top of "--port 0 --root ROOT".
  explicit SimProcess(const std::string& options = "--once") {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    child_ = fork();
    if (child_ == 0) become(options, ends[1]);
    close(ends[1]);
    output_ = fdopen(ends[0], "r");
    const std::string first = line();
    port_ = static_cast<std::uint16_t>(std::atoi(first.c_str() + first.rfind(':') + 1));
  }
  SimProcess(const SimProcess&) = delete;
  SimProcess& operator=(const SimProcess&) = delete;
  ~SimProcess() {
    end(SIGKILL);
    if (output_ != nullptr) fclose(output_);
    std::filesystem::remove_all(folder_);
  }

  std::uint16_t port() const { return port_; }
  std::string root() const { return folder_ + "/root"; }
  std::string folder() const { return folder_; }  ///< around the root

  /// Its status, as wait tells it; 0 when it has ended before.
  int end(int signal) {
    int status = 0;
    if (child_ > 0) kill(child_, signal);
    if (child_ > 0) waitpid(child_, &status, 0);
    child_ = -1;
    return status;
  }
  /// The next line of its events; empty when it has ended.
  std::string line() {
    std::string text;
    for (int c = 0; (c = fgetc(output_)) != EOF && c != '\n';) text += static_cast<char>(c);
    return text;
  }
  /// All events until it ends, each ended by a line feed.
  std::string rest() {
    std::string text;
    for (std::string next = line(); !next.empty(); next = line()) text += next + "\n";
    return text;
  }

 private:
  [[noreturn]] void become(const std::string& options, int output) const {
    std::vector<std::string> words{"kt500sim", "--port", "0", "--root", root()};
    std::istringstream text(options);
    for (std::string word; text >> word;) words.push_back(word);
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    dup2(output, STDOUT_FILENO);
    const auto tests = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    execv((tests.parent_path() / "kt500sim").c_str(), pointers.data());
    _exit(127);
  }

  std::string folder_ = [] {
    std::string name = std::filesystem::temp_directory_path() / "kt500sim-XXXXXX";
    return std::string(mkdtemp(name.data()));
  }();
  pid_t child_ = -1;
  FILE* output_ = nullptr;
  std::uint16_t port_ = 0;
};
