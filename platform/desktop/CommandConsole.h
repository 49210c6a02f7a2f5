#pragma once

#include <QDeadlineTimer>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>

#include "platform/ConsoleCommand.h"
#include "platform/ConsoleText.h"
#include "platform/DriveTable.h"
#include "platform/TerminalProcess.h"

class QKeyEvent;
class QPlainTextEdit;
class QSocketNotifier;

namespace platform::desktop {

/// The window of a console: runs the one program of its command on a terminal, shows what it writes, passes
/// on what is typed, says how it ended, and pauses until a key is pressed. With /c that key closes it.
class CommandConsole : public QWidget {
  Q_OBJECT

 public:
  /// `command` as readConsoleCommand takes it; one that is not understood, or whose program cannot be
  /// started, is told in the window. The program runs in `workingFolder` (host form; empty: this process's
  /// own).
  CommandConsole(const DriveTable& drives, std::string_view command, const std::string& workingFolder = {});
  ~CommandConsole() override;

  bool isRunning() const { return phase_ == Phase::Running; }
  /// The program's status, 128 + n when signal n ended it, 1 when it never ran.
  int exitStatus() const { return exitStatus_; }
  void stop();  ///< ends the program and all that it started, then closes

 signals:
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  enum class Phase { Running, Paused, Staying };

  void makeView();
  void startProgram(const DriveTable& drives, const std::string& workingFolder);
  void readOutput();
  void readToTheEnd();
  void programEnded();
  void pause(const std::string& line);
  void showLines();
  void askToStop();
  void closeOnceEnded();
  bool keyPressed(const QKeyEvent& key);

  ConsoleCommand command_;
  Phase phase_ = Phase::Paused;
  int exitStatus_ = 1;
  bool asking_ = false;
  ConsoleText text_;
  std::optional<TerminalProcess> program_;
  QPlainTextEdit* view_;
  std::unique_ptr<QSocketNotifier> output_;
  std::unique_ptr<QSocketNotifier> end_;
  QTimer showing_;
  QTimer stopping_;  // runs from the wish to stop to the end
  QDeadlineTimer stopDeadline_;
};

}  // namespace platform::desktop
