#include "platform/desktop/Gate.h"
#include "shell/ui/DesktopUser.h"
#include "tests/forms/Forms.h"

namespace {

using tests::the;

constexpr int halfASecond = 500;

class ProgressTest : public testing::Test {
 protected:
  static shell::frmProgress* panel() {
    for (QWidget* window : QApplication::topLevelWidgets())
      if (auto* found = qobject_cast<shell::frmProgress*>(window)) return found;
    return nullptr;
  }
  static bool shown() { return panel() != nullptr && panel()->isVisible(); }
  static bool appears() { return QTest::qWaitFor(shown); }
  static QString text(const char* label) { return the<QLabel>(*panel(), label).text(); }
  static QString lines() { return the<QPlainTextEdit>(*panel(), "txtLines").toPlainText(); }

  platform::Busy busy_;
  platform::desktop::Gate gate_{busy_};
  shell::DesktopUser user_{busy_};
  platform::Busy::Scope job_{busy_};
};

TEST_F(ProgressTest, ComesUpAfterHalfASecondAndSaysHowFarTheRunIs) {
  QWidget window;
  window.setGeometry(50, 50, 700, 500);
  window.show();
  window.activateWindow();
  QApplication::processEvents();
  QElapsedTimer since;
  since.start();
  user_.consoleOpened({"Creating <b>.tgz", 12, [] { return 1536U; }});
  user_.consoleOutput("caf\xC3");
  user_.consoleOutput("\xA9\r\ntar: a: file changed\nb");
  ASSERT_TRUE(appears());
  EXPECT_GE(since.elapsed(), halfASecond);
  EXPECT_EQ(panel()->windowTitle(), "Creating <b>.tgz");
  EXPECT_EQ(lines(), QString::fromUtf8("caf\xC3\xA9\ntar: a: file changed\nb"));
  EXPECT_EQ(text("lblProgress"), "Time: 0:00   Members: 0 of 12   Written: 1.50 KB (1,536 bytes)");
  user_.consoleOutput("\nc\n");
  EXPECT_TRUE(QTest::qWaitFor([] { return text("lblProgress").contains("Members: 2 of 12"); }));
  EXPECT_TRUE(panel()->testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_EQ(panel()->windowType(), Qt::Tool);  // these have no place in a task bar
  EXPECT_LE((panel()->geometry().center() - window.geometry().center()).manhattanLength(), 40);
  tests::checkTexts(*panel());
  user_.consoleClosed();
  EXPECT_EQ(panel(), nullptr);
}

TEST_F(ProgressTest, AShortRunAndOneThatItsOwnWindowCountsShowNothing) {
  user_.consoleOpened({"Creating a.tgz"});
  user_.consoleClosed();
  user_.consoleOpened({"Extracting a.tgz", 3, {}, [](std::size_t) {}});
  EXPECT_EQ(panel(), nullptr);
  user_.consoleOutput("a\n");
  user_.consoleClosed();
}

TEST_F(ProgressTest, EachWayOutStopsAndThePanelStaysUntilTheRunHasEnded) {
  for (const std::function<void()>& way :
       {std::function<void()>([] { tests::leftClick(&the(*panel(), "cmdStop")); }),
        std::function<void()>([] { QTest::keyClick(&the(*panel(), "txtLines"), Qt::Key_Escape); }),
        std::function<void()>([] { panel()->close(); })}) {
    platform::Busy busy;
    platform::desktop::Gate gate(busy);
    shell::DesktopUser user(busy);
    const platform::Busy::Scope job(busy);
    user.consoleOpened({"Creating a.tgz"});
    ASSERT_TRUE(appears());
    way();
    EXPECT_TRUE(busy.stopRequested() && shown());
    EXPECT_FALSE(the(*panel(), "cmdStop").isEnabled());
    user.consoleClosed();
  }
}

TEST_F(ProgressTest, AFloodLeavesTheLatestLines) {
  user_.consoleOpened({"Creating a.tgz"});
  user_.consoleOutput("first\n");
  ASSERT_TRUE(appears());
  EXPECT_EQ(lines(), "first\n");
  std::string flood;
  for (int i = 0; i < 300'000; ++i) flood += std::to_string(i) + '\n';
  user_.consoleOutput(flood);
  EXPECT_TRUE(QTest::qWaitFor([] { return lines().endsWith("\n299999\n"); }));
  EXPECT_TRUE(lines().startsWith("290001\n"));
  EXPECT_EQ(the<QPlainTextEdit>(*panel(), "txtLines").blockCount(), 10'000);
}

}  // namespace
