#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace runtime {

enum class Icon { None, Critical, Information, Exclamation };
enum class Buttons { Ok, OkCancel, YesNo };
enum class Answer { Ok, Cancel, Yes, No };
/// What an OK or a Yes to a question would do; it decides the answer where no window can ask.
/// Where one can ask, a key that was meant for something else must not agree to TakesAway.
enum class Consequence { Nothing, MakesSomethingNew, ReplacesSomething, TakesAway };

/// What refuses, or just ends the box.
inline Answer refusalOf(Buttons buttons) {
  return buttons == Buttons::YesNo ? Answer::No : buttons == Buttons::Ok ? Answer::Ok : Answer::Cancel;
}

constexpr const char* programTitle = "Pakrune";

/// A visible run of a tool, for whoever watches it.
struct VisibleRun {
  std::string title;                            ///< what it does: "Creating pkg.tgz"
  std::size_t members = 0;                      ///< that it works on; 0: nobody knows how many
  std::function<std::uint64_t()> written = {};  ///< bytes so far; none: nothing that grows is known
  /// Is told how many members are done, for a window of the job's own: then no other one shows the run.
  std::function<void(std::size_t)> counted = {};
};

/// What a piece of work needs from whoever sits in front of the program. With windows: real message boxes;
/// without a display: lines on standard error.
class UserInterface {
 public:
  virtual ~UserInterface() = default;
  /// Text may hold CR, LF or CR LF line ends and is plain text. Once the job was asked to stop nothing is
  /// shown any more, and every question is answered with the refusal.
  virtual Answer message(const std::string& text, Buttons buttons, Icon icon,
                         const std::string& title = programTitle,
                         Consequence consequence = Consequence::Nothing) = 0;
  /// A message that explains itself: below its text stands in plain words what was tried, how far it came and
  /// what to look at.
  virtual void explainedMessage(const std::string& text, const std::string& explanation, Icon icon,
                                const std::string& title) {
    message(text + ":\n" + explanation, Buttons::Ok, icon, title);
  }
  /// Shows a text that can be copied (an input box whose answer is not used).
  virtual void showCommand(const std::string& title, const std::string& prompt, const std::string& text) = 0;
  /// Pending events run once, without waiting; while the gate is held, only those that it lets through.
  virtual void letEventsRun() = 0;
  /// A visible run of a tool: its console opens, shows the output as it comes, and closes at its end.
  virtual void consoleOpened(const VisibleRun& run) = 0;
  virtual void consoleOutput(std::string_view bytes) = 0;
  virtual void consoleClosed() = 0;
  /// Every question that could be asked is agreed to beforehand.
  virtual bool agrees() const { return false; }
  /// What a console showed can be read after it has closed, so that nobody need repeat it.
  virtual bool keepsConsole() const { return false; }
};

/// The log pane. A text that begins with a blank gets the time of day in front (24-hour HH:MM:SS);
/// others stand as written. Every entry is appended as CR LF, then the text.
class Log {
 public:
  virtual ~Log() = default;
  virtual void append(const std::string& text) = 0;
  virtual std::size_t size() const = 0;  ///< a place in the log, to ask later what came since
  virtual std::string since(std::size_t place) const = 0;
};

}  // namespace runtime
