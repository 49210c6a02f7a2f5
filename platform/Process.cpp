#include "platform/Process.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <iterator>

#include "platform/ChildProcess.h"
#include "platform/HeldName.h"
#include "platform/ProgramLookup.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t largePage = std::size_t{1} << 21;
constexpr std::size_t longOutput = std::size_t{1} << 20;  // what is longer gets room for the rest at once
constexpr std::size_t firstRoom = std::size_t{1} << 28;
constexpr std::string_view cygdrive = "/cygdrive/";
constexpr std::string_view exe = ".exe";

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Calls `step` every 20 ms; a run that is over sooner never pays for it.
class Pace {
 public:
  explicit Pace(const WaitStep& step) : step_(step) {}

  int milliseconds() const {  ///< until the next step
    return std::max(
        0, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(next_ - Clock::now()).count()));
  }
  bool goesOn() {
    if (!step_ || Clock::now() < next_) return true;
    const bool answer = step_();
    next_ = Clock::now() + interval;
    return answer;
  }

 private:
  static constexpr std::chrono::milliseconds interval{20};
  const WaitStep& step_;
  Clock::time_point next_ = Clock::now() + interval;
};

/// A tool that flushes after each line would wake its reader for each, and that costs both sides more than
/// the line: such a tool is left alone for a moment, then all that it wrote is read at once.
void letLinesGather(ChildProcess& child, std::size_t readsSoFar) {
  constexpr std::size_t shortRun = 8;  // reads; a tool that says little is never kept waiting
  constexpr std::size_t fewBytes = 4096;
  constexpr int moment = 2;  // milliseconds
  if (readsSoFar > shortRun && child.bytesWaiting() < fewBytes) child.waitForEnd(moment);
}

/// Not filled beforehand: what a short tool does not write costs nothing.
using ReadBuffer = std::array<char, 1 << 16>;

/// Appends; a long output gets addresses for far more, which cost memory only as they are written to, and in
/// large pages, so that neither moving nor the first touch of each page takes longer than the reading.
void appendOutput(std::string& text, std::string_view bytes) {
  const std::size_t size = text.size() + bytes.size();
  if (size > longOutput && size > text.capacity()) {
    text.reserve(std::max(firstRoom, 2 * size));
    const auto address = reinterpret_cast<std::uintptr_t>(text.data());
    const std::size_t toPage = (largePage - address % largePage) % largePage;
    const std::size_t whole = (text.capacity() - toPage) / largePage * largePage;
    madvise(text.data() + toPage, whole, MADV_HUGEPAGE);  // refused, it is only slower
  }
  text += bytes;
}

/// A `/cygdrive/X/...` text in host form; a "/" at its end is kept, it makes a tool follow a link.
std::optional<std::string> hostPath(const DriveTable& drives, std::string_view text) {
  if (!text.starts_with(cygdrive)) return std::nullopt;
  auto path = drives.toHost(text);
  if (path && text.ends_with('/') && !path->ends_with('/')) *path += '/';
  return path;
}

std::string hostArgument(const DriveTable& drives, std::string_view argument) {
  const std::size_t value = argument.starts_with('-') ? argument.find('=') + 1 : 0;
  const auto path = hostPath(drives, argument.substr(value));
  return path ? releaseName(argument.substr(0, value)) + *path : releaseName(argument);
}

/// The tools' messages begin with it.
std::string shortName(const std::string& program) {
  std::string name = program.substr(program.rfind('/') + 1);
  if (name.size() > exe.size() && name.ends_with(exe)) name.resize(name.size() - exe.size());
  return name;
}

/// A NUL would end a text early and so name something else.
bool canBePassed(const std::vector<std::string>& texts) {
  return std::none_of(texts.begin(), texts.end(),
                      [](const std::string& text) { return text.find('\0') != std::string::npos; });
}

}  // namespace

std::vector<std::string> splitCommandLine(std::string_view commandLine) {
  std::vector<std::string> words;
  bool inWord = false;
  bool quoted = false;
  for (const char c : commandLine) {
    if (isBlank(c) && !quoted) {
      inWord = false;
      continue;
    }
    if (!inWord) words.emplace_back();
    inWord = true;
    if (c == '"')
      quoted = !quoted;
    else
      words.back() += c;
  }
  return words;
}

HostCommandRunner::HostCommandRunner(const DriveTable& drives, const Environment& environment,
                                     std::string programFolder)
    : drives_(drives), environment_(environment), programFolder_(std::move(programFolder)) {}

void HostCommandRunner::endNext() {
  if (next_) next_->child.end();
  next_.reset();
}

std::optional<std::string> HostCommandRunner::findProgram(std::string_view word,
                                                          std::string_view toolFolder) const {
  const std::size_t folderEnd = word.find_last_of("/\\");
  const std::string name = releaseName(word.substr(folderEnd + 1));
  if (folderEnd != std::string_view::npos)
    return findProgramIn(drives_, {std::string(word.substr(0, folderEnd + 1))}, {name});
  std::vector<std::string> folders = {programFolder_, std::string(toolFolder)};
  for (std::string& entry : environment_.pathEntries()) folders.push_back(std::move(entry));
  if (name.find('.') != std::string::npos) return findProgramIn(drives_, folders, {name});
  return findProgramIn(drives_, folders, {name, name + std::string(exe)});
}

/// Puts the launcher in front, where there is one. False: what may be changed is not there.
bool HostCommandRunner::launched(ChildSettings& settings, const MayChange& mayChange) const {
  if (confinement_ == nullptr) return true;
  auto words = confinement_->wordsBefore(settings.program, mayChange, drives_, true);
  if (!words) return false;
  if (words->empty()) return true;
  settings.program = words->front();
  settings.reports = true;
  settings.arguments.insert(settings.arguments.begin(), std::make_move_iterator(words->begin()),
                            std::make_move_iterator(words->end()));
  return true;
}

/// nullopt: not started, and `result` says why.
std::optional<ChildProcess> HostCommandRunner::start(const StartRequest& request, RunResult& result) const {
  std::vector<std::string> arguments = splitCommandLine(request.commandLine);
  const auto program = arguments.empty() ? std::nullopt : findProgram(arguments.front(), request.toolFolder);
  const auto folder = drives_.toHost(request.workingFolder);
  if (!program || (!folder && !request.workingFolder.empty())) {
    result.systemError = ENOENT;
    return std::nullopt;
  }
  for (std::string& argument : arguments) argument = hostArgument(drives_, argument);
  arguments.front() = shortName(*program);
  if (!canBePassed(arguments)) {
    result.systemError = EINVAL;
    return std::nullopt;
  }
  ChildSettings settings{*program, std::move(arguments), environment_.forChild(request.manner.tarOptions),
                         folder.value_or("")};
  if (request.manner.mayChange && !launched(settings, *request.manner.mayChange)) {
    result.systemError = ENOENT;
    return std::nullopt;
  }
  ChildProcess::Failure failure{};
  auto child = ChildProcess::start(settings, failure, result.systemError);
  result.pipeFailed = failure == ChildProcess::Failure::Pipe;
  return child;
}

/// A run that was begun by the one before it, or a new one; and begins the one behind.
std::optional<ChildProcess> HostCommandRunner::startOrTake(const StartRequest& request, RunResult& result) {
  const bool begun = next_ && next_->request.commandLine == request.commandLine &&
                     next_->request.workingFolder == request.workingFolder &&
                     next_->request.toolFolder == request.toolFolder;
  if (!begun) endNext();
  std::optional<ChildProcess> child = begun ? std::move(next_->child) : start(request, result);
  next_.reset();
  if (!child || request.manner.next.empty()) return child;
  StartRequest next = request;
  next.commandLine = std::exchange(next.manner.next, {});
  RunResult unheard;  // whoever then asks for that run hears why it did not start
  if (auto started = start(next, unheard)) next_.emplace(std::move(next), std::move(*started));
  child->receiveSignals();
  return child;
}

RunResult HostCommandRunner::capture(const StartRequest& request, const WaitStep& step) {
  RunResult result;
  auto child = startOrTake(request, result);
  if (!child) return result;
  Pace pace(step);
  bool goesOn = true;
  ReadBuffer buffer;
  for (std::size_t reads = 0; goesOn && child->hasOutput(); ++reads) {
    child->waitForOutput(pace.milliseconds());
    letLinesGather(*child, reads);
    appendOutput(result.text, {buffer.data(), child->read(buffer.data(), buffer.size())});
    goesOn = pace.goesOn();
  }
  while (goesOn && !child->hasEnded()) {
    child->waitForOutputOrEnd(pace.milliseconds());
    goesOn = pace.goesOn();
  }
  result.stopped = !goesOn;
  if (!goesOn) result.text += child->end();
  if (!goesOn) endNext();
  result.status = child->status();
  return result;
}

RunResult HostCommandRunner::runVisible(const StartRequest& request, const OutputSink& sink,
                                        const WaitStep& step) {
  RunResult result;
  auto child = start(request, result);
  if (!child) return result;
  Pace pace(step);
  ReadBuffer buffer;
  const auto deliver = [&](std::size_t most) {
    const std::size_t size = child->read(buffer.data(), std::min(buffer.size(), most));
    if (size > 0) sink(std::string_view(buffer.data(), size));
  };
  bool goesOn = true;
  for (std::size_t reads = 0; goesOn && !child->hasEnded(); ++reads) {
    child->waitForOutputOrEnd(pace.milliseconds());
    letLinesGather(*child, reads);
    deliver(buffer.size());
    goesOn = pace.goesOn();
  }
  // What was written before the end; a background child may write on, and is not listened to.
  for (std::size_t left = child->bytesWaiting(); goesOn && left > 0 && child->hasOutput();) {
    const std::size_t most = std::min(buffer.size(), left);
    deliver(most);
    left -= most;
  }
  result.stopped = !goesOn;
  if (!goesOn) {
    const std::string rest = child->end();
    if (!rest.empty()) sink(rest);
  }
  result.status = child->status();
  return result;
}

}  // namespace platform
