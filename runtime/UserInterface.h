#pragma once

#include <string>
#include <string_view>

namespace runtime {

enum class Icon { None, Critical, Information, Exclamation };
enum class Buttons { Ok, OkCancel, YesNo };
enum class Answer { Ok, Cancel, Yes, No };
/// What an OK or a Yes to a question would do; it decides the answer where no window can ask.
enum class Consequence { Nothing, MakesSomethingNew, ReplacesSomething };

constexpr const char* programTitle = "Pakrune";

/// What a piece of work needs from whoever sits in front of the program. With windows: real message boxes;
/// without a display: lines on standard error.
class UserInterface {
 public:
  virtual ~UserInterface() = default;
  /// Text may hold CR, LF or CR LF line ends and is plain text.
  virtual Answer message(const std::string& text, Buttons buttons, Icon icon,
                         const std::string& title = programTitle,
                         Consequence consequence = Consequence::Nothing) = 0;
  /// Shows a text that can be copied (an input box whose answer is not used).
  virtual void showCommand(const std::string& title, const std::string& prompt, const std::string& text) = 0;
  virtual void letEventsRun() = 0;  ///< pending events run once, without waiting
  virtual void repaint() {}         ///< the windows repaint while a tool runs; no input is read
  /// Output of a visible run: false ends the tool (its window was closed).
  virtual bool consoleOutput(std::string_view bytes) = 0;
  virtual bool consoleStep() = 0;  ///< called while a visible run waits; repaints only
  virtual void consoleOpened(const std::string& title) = 0;
  virtual void consoleClosed() = 0;
};

/// The log pane. A text that begins with a blank gets the time of day in front (24-hour HH:MM:SS);
/// others stand as written. Every entry is appended as CR LF, then the text.
class Log {
 public:
  virtual ~Log() = default;
  virtual void append(const std::string& text) = 0;
};

}  // namespace runtime
