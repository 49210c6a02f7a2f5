// cmd.exe: the console in which the serial loader runs. One argument, as a command processor takes it:
// /c ""C:\Tools\wdx.exe" -p 1 -b 115200 -i "app.tgz"" & pause   (/k: the window stays open)

#include <QApplication>
#include <QSocketNotifier>
#include <cstdio>
#include <cstdlib>

#include "platform/Signals.h"
#include "platform/StandardStreams.h"
#include "platform/TypedPath.h"
#include "platform/desktop/CommandConsole.h"
#include "platform/desktop/DisplayCheck.h"
#include "platform/desktop/ProgramStyle.h"

namespace {

constexpr int failed = 1;
constexpr int signalled = 128;  // plus the signal's number

platform::DriveTable drives() {
  const char* const table = std::getenv("PAKRUNE_DRIVES");
  return platform::DriveTable::fromText(table == nullptr ? "" : table, platform::homeFolder());
}

/// Qt gets the program's name only: the argument is none of its options.
int runConsole(char* name, const char* command) {
  int one = 1;
  char* names[] = {name, nullptr};
  const QApplication application(one, names);
  QApplication::setQuitOnLastWindowClosed(false);
  platform::desktop::dressApplication();
  platform::desktop::CommandConsole console(drives(), command);
  QObject::connect(&console, &platform::desktop::CommandConsole::closed, &console,
                   [&console] { QApplication::exit(console.exitStatus()); });
  QSocketNotifier endSignals(platform::endSignalDescriptor(), QSocketNotifier::Read);
  QObject::connect(&endSignals, &QSocketNotifier::activated, &console, [&] {
    endSignals.setEnabled(false);
    console.stop();
  });
  console.show();
  console.raise();
  console.activateWindow();
  return QApplication::exec();
}

}  // namespace

int main(int count, char** words) {
  platform::openStandardStreams();
  platform::catchEndSignals();
  if (count != 2) {
    std::fputs("cmd.exe /c|/k COMMAND (one argument)\n", stderr);
    return failed;
  }
  if (!platform::desktop::displayOpens(words[0])) {
    std::fputs("cmd.exe: there is no display to show a window on\n", stderr);
    return failed;
  }
  const int status = runConsole(words[0], words[1]);
  const int signal = platform::endSignal();
  return signal == 0 ? status : signalled + signal;
}
