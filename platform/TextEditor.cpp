#include "platform/TextEditor.h"

#include <array>
#include <chrono>
#include <optional>

#include "platform/DesktopEntry.h"
#include "platform/DetachedStart.h"
#include "platform/ProgramLookup.h"
#include "platform/ShellOpen.h"
#include "platform/TextBytes.h"

namespace platform {
namespace {

constexpr std::size_t lookedAt = 8192;  // bytes
constexpr int patience = 3000;          // milliseconds
constexpr char endMark = 0x1A;          // of an old text
constexpr const char* desktop = "xdg-mime";
constexpr std::string_view entryEnd = ".desktop";

std::optional<std::string> hostProgram(const DriveTable& drives, const Environment& environment,
                                       const std::string& name) {
  if (name.starts_with('/')) return name;
  return findProgramIn(drives, environment.pathEntries(), {name});
}

/// What a program of the desktop prints, warnings included.
std::string answerOf(const ChildSettings& question) {
  auto failure = ChildProcess::Failure::None;
  int systemError = 0;
  auto child = ChildProcess::start(question, failure, systemError);
  if (!child) return {};
  std::string answer;
  std::array<char, 512> buffer{};
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patience);
  while (child->hasOutput() && std::chrono::steady_clock::now() < end) {
    child->waitForOutput(patience);
    answer.append(buffer.data(), child->read(buffer.data(), buffer.size()));
  }
  child->end();
  return answer;
}

/// The last line that names one; the lines before may be warnings.
std::string entryIn(std::string_view answer) {
  std::string name;
  while (!answer.empty()) {
    const std::string_view line = answer.substr(0, answer.find('\n'));
    if (line.ends_with(entryEnd) && line.find('/') == line.npos) name = line;
    answer.remove_prefix(std::min(answer.size(), line.size() + 1));
  }
  return name;
}

/// The entry of the default program for plain text; empty: the desktop names none.
std::string editorEntry(const DriveTable& drives, const Environment& environment) {
  const auto program = hostProgram(drives, environment, desktop);
  if (!program) return {};
  const std::string name =
      entryIn(answerOf({*program, {desktop, "query", "default", "text/plain"}, usersEnvironment(), {}}));
  return name.empty() ? name : desktopEntry(name);
}

bool startEditor(const DriveTable& drives, const Environment& environment, std::string_view entry,
                 const std::string& hostPath) {
  const std::vector<std::string> command = commandFor(entry, hostPath);
  const auto program = command.empty() ? std::nullopt : hostProgram(drives, environment, command.front());
  return program && startDetached({*program, command, usersEnvironment(), {}}) == 0;
}

}  // namespace

std::string noTextReason(const Files& files, std::string_view path) {
  if (!files.isRegularFile(path)) return "it is no file";
  auto start = files.readBytes(path, lookedAt);
  if (!start) return "it cannot be read";
  if (start->size() < lookedAt && start->ends_with(endMark)) start->pop_back();
  return holdsControls(*start) ? "it is no text" : std::string();
}

bool editTexts(const DriveTable& drives, const Environment& environment,
               const std::vector<std::string>& paths) {
  const std::string entry = editorEntry(drives, environment);
  bool started = true;
  for (const std::string& path : paths) {
    const std::string host = drives.toHost(path).value_or(std::string());
    started &= startEditor(drives, environment, entry, host) || shellOpen(drives, environment, path, {});
  }
  return started;
}

}  // namespace platform
