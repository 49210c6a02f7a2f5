#include "tools/kt500sim_tar.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/Descriptor.h"
#include "platform/Pointers.h"

namespace kt500sim {
namespace {

constexpr std::size_t longestLine = 64 * 1024;  // bytes; a listing with more is not worth reading

constexpr int noProgram = 127;
constexpr rlim_t mostMemory = rlim_t{256} << 20;  // bytes; a small archive may ask for any amount

/// Behind the fork of a process with threads: nothing here may allocate.
[[noreturn]] void becomeTar(char* const* words, int output) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  signal(SIGPIPE, SIG_DFL);  // so that a decompressor ends with its tar
  dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  const rlimit memory{mostMemory, mostMemory};
  setrlimit(RLIMIT_AS, &memory);
  umask(0);  // modes as the archive has them
  execvp("tar", words);
  _exit(noProgram);
}

/// Cuts what arrives into lines; false when `line` wants no more, a line has no end, or it takes too long.
bool passLines(int input, Moment until, const std::function<bool(std::string_view)>& line) {
  std::string waiting;
  std::array<char, 4096> buffer;
  while (waitFor(input, POLLIN, until)) {
    const ssize_t count = read(input, buffer.data(), buffer.size());
    if (count <= 0) return waiting.empty() || line(waiting);
    waiting.append(buffer.data(), static_cast<std::size_t>(count));
    std::size_t start = 0;
    for (std::size_t end; (end = waiting.find('\n', start)) != std::string::npos; start = end + 1)
      if (!line(std::string_view(waiting).substr(start, end - start))) return false;
    waiting.erase(0, start);
    if (waiting.size() > longestLine) return false;
  }
  return false;
}

/// Ends all that tar has started, which is over or unwanted; tar's status.
int endGroup(pid_t tar) {
  kill(-tar, SIGKILL);
  int status = 0;
  while (waitpid(tar, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

std::string howEnded(int status) {
  if (WIFSIGNALED(status)) return "tar was ended by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) == noProgram) return "there is no tar";
  return WEXITSTATUS(status) == 0 ? "" : "tar ended with " + std::to_string(WEXITSTATUS(status));
}

bool hasComponent(std::string_view path, std::string_view component) {
  while (true) {
    const std::size_t slash = path.find('/');
    if (path.substr(0, slash) == component) return true;
    if (slash == path.npos) return false;
    path.remove_prefix(slash + 1);
  }
}

bool leadsInside(std::string_view path) {
  return !path.empty() && path.front() != '/' && !hasComponent(path, "..");
}

bool isMemberName(std::string_view name) {
  if (name == besideHome) return true;
  if (name.starts_with("../usr8/")) name.remove_prefix(besideHome.size() + 1);
  return name.empty() || leadsInside(name);
}

/// "dddd-dd-dd" and the like, where d stands for a digit.
bool looksLike(std::string_view text, std::string_view pattern) {
  return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
                    [](char c, char wanted) { return wanted == 'd' ? c >= '0' && c <= '9' : c == wanted; });
}

/// Every place where a target might begin is one: which of them it is the text does not say.
std::vector<std::string_view> pieces(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> found;
  for (std::size_t at; (at = text.find(separator)) != text.npos; text.remove_prefix(at + separator.size()))
    found.push_back(text.substr(0, at));
  found.push_back(text);
  return found;
}

}  // namespace

std::string runTar(const std::vector<std::string>& arguments, Moment until,
                   const std::function<bool(std::string_view)>& line) {
  std::vector<std::string> words{"tar"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const std::vector<char*> pointers = platform::pointersTo(words);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return "tar cannot be started";
  const platform::Descriptor input(ends[0]);
  platform::Descriptor output(ends[1]);
  const pid_t child = fork();
  if (child == 0) becomeTar(pointers.data(), output.get());
  output.closeNow();
  if (child < 0) return "tar cannot be started";
  setpgid(child, child);
  const platform::Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
  const bool passed = passLines(input.get(), until, line) && waitFor(process.get(), POLLIN, until);
  const int status = endGroup(child);
  if (passed) return howEnded(status);
  if (isToEnd()) return "the simulator was ended";
  return std::chrono::steady_clock::now() < until ? "tar was stopped" : "tar took too long";
}

bool readMember(std::string_view line, Member& member) {
  std::string_view rest = line;
  const auto field = [&rest] {
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    const std::string_view text = rest.substr(0, rest.find(' '));
    rest.remove_prefix(text.size());
    return std::string(text);
  };
  member.mode = field();
  member.owner = field();
  member.size = field();
  const bool dated = looksLike(field(), "dddd-dd-dd") && looksLike(field(), "dd:dd");
  if (!dated || rest.size() < 2 || member.mode.size() != 10) return false;
  member.name = rest.substr(1);
  return true;
}

bool staysInside(const Member& member) {
  const char kind = member.mode.front();
  if (kind == '-' || kind == 'd') return isMemberName(member.name);
  if (kind != 'l' && kind != 'h') return false;
  const auto parts = pieces(member.name, kind == 'l' ? " -> " : " link to ");
  if (parts.size() < 2 || !isMemberName(parts.front())) return false;
  for (std::size_t i = 1; i < parts.size(); ++i)
    if (kind == 'l' ? !leadsInside(parts[i]) : !isMemberName(parts[i])) return false;
  return true;
}

}  // namespace kt500sim
