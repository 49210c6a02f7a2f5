#pragma once

#include <QObject>
#include <QWidget>

#include "shell/Program.h"

namespace shell {

/// Opens the help at the page of a window: of what it shows, else of the window that it belongs to (a box or
/// a picker). nullptr: the contents. What cannot be opened is a line of the log.
void openHelp(Program& program, const QWidget* window);

/// F1 in any window of the program opens its page, unless the window has given the key a meaning of its own.
/// To be made before the gate, which is then asked first: a job drops the key except in windows that it
/// opened.
class HelpKey : public QObject {
  Q_OBJECT

 public:
  explicit HelpKey(Program& program);  ///< lent; one for a program

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  Program& program_;
};

}  // namespace shell
