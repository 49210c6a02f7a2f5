#include "platform/desktop/CommandConsole.h"

#include <csignal>

#include "platform/HeldName.h"
#include "tests/OnDisk.h"
#include "tests/forms/Forms.h"

using namespace tests;
using platform::desktop::CommandConsole;
using testworld::has;
namespace fs = std::filesystem;

namespace {

constexpr int longTime = 20'000;  // milliseconds; nothing here takes as long unless it fails

/// The loader is a script, C:\my tools & more\wdx.exe.
class CommandConsoleTest : public testworld::World {
 protected:
  CommandConsoleTest() { fs::create_directory(host("my tools & more")); }

  void loader(const std::string& script, fs::perms mode = fs::perms(0755)) const {
    const std::string file = host("my tools & more/wdx.exe");
    std::ofstream(file) << "#!/bin/sh\n" << script << "\n";
    fs::permissions(file, mode);
  }
  static std::string command(const std::string& name = "app.tgz", const std::string& mode = "/c") {
    return mode + " \"\"C:\\my tools & more\\wdx.exe\" -p 1 -b 115200 -i \"" + name + "\"\" & pause";
  }
  CommandConsole& open(const std::string& text = command()) {
    console_ = std::make_unique<CommandConsole>(drives_, text, root_ + "/disk");
    console_->show();
    QObject::connect(console_.get(), &CommandConsole::closed, [this] { ++closed_; });
    return *console_;
  }
  QPlainTextEdit& view() const { return the<QPlainTextEdit>(*console_, "txtConsole"); }
  std::string text() const { return view().toPlainText().toStdString(); }
  bool shows(const std::string& part) const {
    return QTest::qWaitFor([&] { return text().find(part) != std::string::npos; }, longTime);
  }
  bool pauses() const { return shows("Press any key to continue . . . "); }
  void press(int key, Qt::KeyboardModifiers modifiers = {}) const {
    QTest::keyClick(&view(), static_cast<Qt::Key>(key), modifiers);
  }
  void compose(const char* text) const {
    QInputMethodEvent composed;
    composed.setCommitString(text);
    QApplication::sendEvent(&view(), &composed);
  }
  static bool runs(const std::string& pid) {
    return kill(std::stoi(pid), 0) == 0 && !has(bytesOf("/proc/" + pid + "/stat"), ") Z ");
  }
  static bool endOf(const std::vector<std::string>& pids) {
    return QTest::qWaitFor([&] { return std::none_of(pids.begin(), pids.end(), runs); }, longTime);
  }
  bool closes() const {
    return QTest::qWaitFor([this] { return closed_ == 1; }, longTime);
  }
  bool appears(const std::string& name) const {
    return QTest::qWaitFor([&] { return fs::exists(host(name)); }, longTime);
  }
  /// Waits for signals that it ignores, as does what it has started; their numbers are in "pids".
  void stubbornLoader() const {
    loader(
        "trap '' HUP TERM; sleep 1000 & echo $! >new; echo $$ >>new; mv new pids; while :; do sleep 1; done");
  }
  std::vector<std::string> pids() const {
    EXPECT_TRUE(appears("pids"));
    std::ifstream file(host("pids"));
    return {std::istream_iterator<std::string>(file), {}};
  }

  std::unique_ptr<CommandConsole> console_;
  int closed_ = 0;
};

}  // namespace

TEST_F(CommandConsoleTest, RunsTheLoaderAsOnATerminalAndPauses) {
  loader(
      "printf 'Sending  10%%\\rSending 100%%\\n'; test -t 0 -a -t 1 && tty -s && stty size; pwd; echo $TERM\n"
      "read -r line; echo \"got $line\"; exit 3");
  const CommandConsole& console = open();
  EXPECT_EQ(console.windowTitle(), "wdx.exe app.tgz");
  checkTexts(console);
  ASSERT_TRUE(shows("dumb\n"));
  QTest::keyClicks(&view(), "hx");
  press(Qt::Key_Backspace);
  compose("\xC3\xA9");
  press(Qt::Key_Return);
  ASSERT_TRUE(pauses());
  EXPECT_EQ(text(), "Sending 100%\n25 80\n" + host("").substr(0, host("").size() - 1) +
                        "\ndumb\nh\xC3\xA9\ngot h\xC3\xA9\nwdx.exe ended with status 3.\n"
                        "Press any key to continue . . . ");
  EXPECT_EQ(console.exitStatus(), 3);
  press(Qt::Key_Shift);
  QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, {}, "\r", true);
  QApplication::sendEvent(&view(), &repeated);
  EXPECT_EQ(closed_, 0);
  press(Qt::Key_Space);
  EXPECT_EQ(closed_, 1);
  EXPECT_FALSE(console.isVisible());
}

TEST_F(CommandConsoleTest, WithKItStaysUntilItIsClosed) {
  loader("seq 5000; read -r line; kill -15 $$");
  open(command("a", "/k"));
  ASSERT_TRUE(shows("5000\n"));
  QScrollBar& bar = *view().verticalScrollBar();
  EXPECT_EQ(bar.value(), bar.maximum());
  bar.setValue(3);
  press(Qt::Key_Return);
  ASSERT_TRUE(pauses());
  EXPECT_EQ(bar.value(), 3) << "who reads further up is left there";
  EXPECT_TRUE(has(text(), "\n5000\n\nwdx.exe was ended by signal 15.\n"));
  EXPECT_EQ(console_->exitStatus(), 128 + SIGTERM);
  press(Qt::Key_A);
  EXPECT_TRUE(text().ends_with("continue . . . \nThis window stays open until it is closed."));
  const std::string all = text();
  press(Qt::Key_A);
  EXPECT_EQ(text(), all);
  EXPECT_EQ(closed_, 0);
  console_->close();
  EXPECT_EQ(closed_, 1);
}

TEST_F(CommandConsoleTest, AnyFileNameArrivesAsOneArgument) {
  loader("printf '%s\\n' \"$#\" \"$6\" >args.new; mv args.new args");
  for (const std::string name : {"a & b|c>d<e", "%PATH%^!x!(x)", "-i", "/k", "  ", "a\\", "x\"\" & pause",
                                 "\n\x7F\xFF", "$(id)`id`'", "C:\\x", "*"}) {
    open(command(platform::holdName(name)));
    ASSERT_TRUE(pauses());
    EXPECT_EQ(bytesOf(host("args")), "6\n" + name + "\n");
    fs::remove(host("args"));
  }
}

TEST_F(CommandConsoleTest, WhatDoesNotStartIsToldInTheWindow) {
  const std::string path = "C:\\my tools & more\\wdx.exe cannot be started: ";
  loader("touch ran", fs::perms(0644));
  using Case = std::pair<std::string, std::string>;
  for (const auto& [commandText, wanted] :
       {Case{command(), path + "Permission denied."},
        Case{"/c \"\"sh\" -c \"touch ran\"\" & pause", "sh cannot be started: No such file or directory."},
        Case{command(platform::holdName(std::string(1, '\0'))), path + "Invalid argument."},
        Case{"/c \"\"C:\\" + platform::holdName("a?\n") + "\"\" & pause",
             "C:\\a?\\x0A cannot be started: No such file or directory."},
        Case{"/c \"\"Z:\\bin\\touch\" \"ran\"\" & pause & pause",
             "This command is not understood: it is not one program in quotes and then \"pause\"."}}) {
    open(commandText);
    EXPECT_EQ(text(), wanted + "\nPress any key to continue . . . ");
    EXPECT_EQ(console_->exitStatus(), 1);
    compose("x");  // there is nobody to get it
    press(Qt::Key_Return);
  }
  EXPECT_EQ(closed_, 5);
  EXPECT_FALSE(fs::exists(host("ran")));
}

TEST_F(CommandConsoleTest, ClosingAsksOnceAndYesEndsAllThatRuns) {
  stubbornLoader();
  open();
  const auto numbers = pids();
  ASSERT_EQ(numbers.size(), 2U);
  int asked = 0;
  const auto answer = [&](QMessageBox::StandardButton button) {
    onNextModal<QMessageBox>([&, button](QMessageBox& box) {
      ++asked;
      EXPECT_EQ(box.text(), "wdx.exe is still running. Stop it?");
      console_->close();  // no second box
      QApplication::processEvents();
      EXPECT_EQ(QApplication::activeModalWidget(), &box);
      box.button(button)->click();
    });
    const int before = asked;
    console_->close();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return asked > before && !QApplication::activeModalWidget(); }, longTime));
  };
  answer(QMessageBox::No);
  EXPECT_TRUE(console_->isRunning());
  EXPECT_EQ(closed_, 0);
  QElapsedTimer clock;
  clock.start();
  answer(QMessageBox::Yes);
  ASSERT_TRUE(closes());
  EXPECT_GE(clock.elapsed(), 1000);  // they had their time
  EXPECT_TRUE(endOf(numbers));
  EXPECT_EQ(console_->exitStatus(), 128 + SIGKILL);
}

TEST_F(CommandConsoleTest, WhatEndsByItselfInTimeIsNotKilled) {
  // Counting takes a while and starts nothing.
  const std::string tidy =
      "tidy() { trap '' HUP; i=0; while [ $i -lt 300000 ]; do i=$((i+1)); done; touch cleaned; exit 0; }\n"
      "trap tidy HUP; touch ready; while :; do sleep 0.05; done";
  for (const std::string& script : {tidy, "(" + tidy + "\n) & wait"}) {
    loader(script);
    open();
    ASSERT_TRUE(appears("ready"));
    console_->stop();
    console_->stop();
    ASSERT_TRUE(QTest::qWaitFor([&] { return script == tidy || !console_->isRunning(); }, longTime));
    console_->close();  // it closes by itself, and asks no more
    EXPECT_TRUE(console_->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !console_->isVisible(); }, longTime));
    EXPECT_TRUE(fs::exists(host("cleaned"))) << script;
    EXPECT_EQ(std::exchange(closed_, 0), 1);
    for (const char* file : {"ready", "cleaned"}) fs::remove(host(file));
  }
}

TEST_F(CommandConsoleTest, AnEndDuringTheQuestionNeedsNoAnswer) {
  loader("read -r line");
  for (const bool signalled : {false, true}) {
    open();
    onNextModal<QMessageBox>([this, signalled](QMessageBox& box) {
      signalled ? console_->stop() : press(Qt::Key_Return);
      EXPECT_TRUE(signalled ? closes() : pauses());
      box.button(signalled ? QMessageBox::No : QMessageBox::Yes)->click();
    });
    console_->close();
    EXPECT_TRUE(closes());
    EXPECT_EQ(console_->exitStatus(), signalled ? 128 + SIGHUP : 0);
    closed_ = 0;
  }
}

TEST_F(CommandConsoleTest, AFloodLeavesTheWindowAliveAndCtrlCEndsIt) {
  loader("exec yes flood");
  open();
  ASSERT_TRUE(shows("flood"));
  int ticks = 0;
  QTimer clock;
  QObject::connect(&clock, &QTimer::timeout, [&ticks] { ++ticks; });
  clock.start(10);
  ASSERT_TRUE(QTest::qWaitFor([this] { return view().blockCount() == 10000; }, longTime));
  EXPECT_GT(ticks, 5);
  view().selectAll();  // while it runs, Ctrl+C is the loader's
  press(Qt::Key_C, Qt::ControlModifier);
  ASSERT_TRUE(pauses());
  EXPECT_TRUE(has(text(), "wdx.exe was ended by signal 2."));
  EXPECT_LE(view().blockCount(), 10000);
}

TEST_F(CommandConsoleTest, CtrlCCopiesWhenNothingRuns) {
  loader("printf 'no line end'");
  open();
  ASSERT_TRUE(pauses());
  EXPECT_TRUE(text().starts_with("no line end\nwdx.exe ended well.\nPress"));
  QTextCursor cursor(view().document());
  cursor.select(QTextCursor::LineUnderCursor);
  view().setTextCursor(cursor);
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "no line end");
  EXPECT_EQ(closed_, 0);
  cursor.clearSelection();
  view().setTextCursor(cursor);
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(closed_, 1);
}

/// The program itself, as it is started.
TEST_F(CommandConsoleTest, TheProgramEndsTheLoaderWhenItIsEnded) {
  QProcess program;
  program.setProgram(QString::fromStdString(built("bin/cmd.exe")));
  program.setWorkingDirectory(QString::fromStdString(root_ + "/disk"));
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("PAKRUNE_DRIVES", QString::fromStdString("C=" + root_ + "/disk"));
  program.setProcessEnvironment(environment);
  const auto start = [&](const QStringList& arguments) {
    program.setArguments(arguments);
    program.start();
  };
  stubbornLoader();
  start({QString::fromStdString(command())});
  const auto numbers = pids();
  EXPECT_TRUE(std::all_of(numbers.begin(), numbers.end(), runs));
  program.terminate();
  ASSERT_TRUE(program.waitForFinished(longTime));
  EXPECT_TRUE(endOf(numbers));
  EXPECT_EQ(program.exitCode(), 128 + SIGTERM);
  start({});
  ASSERT_TRUE(program.waitForFinished(longTime));
  EXPECT_EQ(program.exitCode(), 1);
  environment.insert("QT_QPA_PLATFORM", "xcb");  // and no DISPLAY
  program.setProcessEnvironment(environment);
  start({QString::fromStdString(command())});
  ASSERT_TRUE(program.waitForFinished(longTime));
  EXPECT_EQ(program.exitCode(), 1);
  EXPECT_EQ(program.readAllStandardError(), "cmd.exe: there is no display to show a window on\n");
}
