#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <optional>

#include "platform/HeldName.h"
#include "platform/desktop/FilePickers.h"
#include "platform/desktop/InputBox.h"
#include "platform/desktop/Locale.h"
#include "platform/desktop/Text.h"
#include "shell/ui/DesktopUser.h"
#include "shell/ui/Dialog.h"
#include "shell/ui/frmAbout.h"
#include "shell/ui/frmPermsError.h"

namespace {

using namespace platform::desktop;
using runtime::Answer;
using runtime::Buttons;
using runtime::Icon;

/// Acts on the modal window that the next call opens. One that is not the awaited kind is closed, so that a
/// failure does not hang.
template <typename Window>
void onNextModal(std::function<void(Window&)> act) {
  QTimer::singleShot(0, [act = std::move(act)] {
    QWidget* modal = QApplication::activeModalWidget();
    ASSERT_NE(modal, nullptr);
    if (auto* window = qobject_cast<Window*>(modal)) return act(*window);
    ADD_FAILURE() << "another window: " << modal->metaObject()->className();
    modal->close();
  });
}

struct SilentLog : runtime::Log {
  void append(const std::string&) override {}
  std::size_t size() const override { return 0; }
  std::string since(std::size_t) const override { return ""; }
};

struct SettingsWorld {
  static constexpr const char* key = "SOFTWARE\\Halvoren Inc\\Pakrune";
  QTemporaryDir folder;
  platform::Registry registry{folder.filePath("user.txt").toStdString(),
                              folder.filePath("site.txt").toStdString()};
  platform::UserSettings userSettings{registry};
  SilentLog log;
  runtime::Settings settings{registry, userSettings, log};

  std::string firstRun() const {
    const auto value = registry.read(platform::Hive::LocalMachine, key, "FirstRun");
    return value ? value->text : std::string();
  }
};

TEST(Text, LineEndsAndNamesSurviveTheControl) {
  EXPECT_EQ(toControl("a\r\nb\rc\n\r\r\n"), QString("a\nb\nc\n\n\n"));
  const std::string held = "C:\\\xEF\x80\xBA\xC3\xA9\xEF\x83\xBF";  // held ':', 'é', held byte FF
  EXPECT_EQ(fromControl(toControl(held)), held);
  EXPECT_EQ(toShown("x\xEF\x80\xBA\ry"), QString("x:\ny"));
  EXPECT_FALSE(toPlainTip("<b>a&").contains("<b>"));
}

TEST(DesktopUser, BoxIsExactlyTheGivenOne) {
  struct Case {
    Buttons buttons;
    Icon icon;
    QMessageBox::Icon shown;
    QMessageBox::StandardButtons offered;
    QMessageBox::StandardButton pressed;  // NoButton: Escape
    Answer answer;
  };
  const Case cases[] = {
      {Buttons::Ok, Icon::None, QMessageBox::NoIcon, QMessageBox::Ok, QMessageBox::NoButton, Answer::Ok},
      {Buttons::OkCancel, Icon::Critical, QMessageBox::Critical, QMessageBox::Ok | QMessageBox::Cancel,
       QMessageBox::NoButton, Answer::Cancel},
      {Buttons::OkCancel, Icon::Information, QMessageBox::Information, QMessageBox::Ok | QMessageBox::Cancel,
       QMessageBox::Ok, Answer::Ok},
      {Buttons::YesNo, Icon::Exclamation, QMessageBox::Warning, QMessageBox::Yes | QMessageBox::No,
       QMessageBox::Yes, Answer::Yes},
      {Buttons::YesNo, Icon::None, QMessageBox::NoIcon, QMessageBox::Yes | QMessageBox::No,
       QMessageBox::NoButton, Answer::No}};
  platform::Busy busy;
  shell::DesktopUser user(busy);
  for (const Case& c : cases) {
    onNextModal<QMessageBox>([&](QMessageBox& box) {
      EXPECT_EQ(box.text(), QString("<b>one</b>\ntwo & three"));
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.windowTitle(), QString("Warning.."));
      EXPECT_EQ(box.icon(), c.shown);
      EXPECT_EQ(box.standardButtons(), c.offered);
      c.pressed == QMessageBox::NoButton ? QTest::keyClick(&box, Qt::Key_Escape)
                                         : box.button(c.pressed)->click();
    });
    EXPECT_EQ(user.message("<b>one</b>\rtwo & three", c.buttons, c.icon, "Warning.."), c.answer);
  }
}

TEST(DesktopUser, BoxOutlivesItsWindowBeingUnloaded) {
  auto* window = new QWidget;
  window->show();
  window->activateWindow();
  QApplication::processEvents();
  onNextModal<QMessageBox>([&](QMessageBox& box) {
    EXPECT_EQ(box.parentWidget(), window);
    delete window;
  });
  platform::Busy busy;
  shell::DesktopUser user(busy);
  EXPECT_EQ(user.message("q", Buttons::YesNo, Icon::None), Answer::No);
}

TEST(DesktopUser, ConsoleShowsOutputAndClosingItEndsTheRun) {
  platform::Busy busy;
  shell::DesktopUser user(busy);
  const platform::Busy::Scope job(busy);
  user.consoleOpened("tar.exe");
  user.consoleOutput("caf\xC3");
  user.consoleOutput("\xA9\r");
  user.consoleOutput("\nend");
  QApplication::processEvents();
  QPointer<QWidget> console;
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->objectName() == "console") console = window;
  ASSERT_FALSE(console.isNull());
  EXPECT_EQ(console->findChild<QPlainTextEdit*>()->toPlainText(), QString::fromUtf8("caf\xC3\xA9\nend"));
  console->close();
  EXPECT_TRUE(busy.stopRequested());
  EXPECT_TRUE(console->isVisible());  // it goes when the run has ended
  user.consoleClosed();
  EXPECT_TRUE(console.isNull());
}

TEST(InputBox, PlainPromptAndTheTextOrNothing) {
  onNextModal<QInputDialog>([](QInputDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), QString("Create New Folder"));
    EXPECT_EQ(dialog.labelText(), QString("<i>Enter</i>\n& name"));
    EXPECT_EQ(dialog.findChild<QLabel*>()->textFormat(), Qt::PlainText);
    EXPECT_EQ(dialog.textValue(), QString("old"));
    dialog.setTextValue("new");
    dialog.accept();
  });
  EXPECT_EQ(inputBox("Create New Folder", "<i>Enter</i>\r& name", "old"), "new");
  onNextModal<QInputDialog>([](QInputDialog& dialog) { dialog.reject(); });
  EXPECT_EQ(inputBox("t", "p", "x"), std::nullopt);
}

TEST(FilePickers, FilterTextsBecomeNameFilters) {
  EXPECT_EQ(
      nameFilters("TAR File (*.tar)|*.tar|GZIP (*.tgz, *.z)|*.tgz; *.tar.gz;  *.z|All files (*.*)|*.*|"),
      QStringList(
          {"TAR File (*.tar) (*.tar)", "GZIP (*.tgz, *.z) (*.tgz *.tar.gz *.z)", "All files (*.*) (*)"}));
  EXPECT_EQ(nameFilters("wdx.exe"), QStringList({"wdx.exe (wdx.exe)"}));
  EXPECT_TRUE(nameFilters("").isEmpty());
}

TEST(FilePickers, ChosenFileIsAWindowsPath) {
  QTemporaryDir folder;
  QFile existing(folder.filePath("old.tgz"));
  ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
  const platform::DriveTable drives({{'C', folder.path().toStdString()}});
  DesktopFilePickers pickers(drives);
  const FileRequest request{"Create Tar File", "C:\\", "A (*.tgz)|*.tgz|All files (*.*)|*.*|", 2, ""};
  for (const bool accept : {true, false}) {
    onNextModal<QFileDialog>([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.windowTitle(), QString("Create Tar File"));
      EXPECT_EQ(dialog.directory().path(), folder.path());
      EXPECT_EQ(dialog.selectedNameFilter(), QString("All files (*.*)"));
      dialog.selectFile("old.tgz");  // an existing name: no question of Qt's own
      QDialog& base = dialog;
      accept ? base.accept() : base.reject();
    });
    EXPECT_EQ(pickers.saveFile(request), accept ? "C:\\old.tgz" : "");
  }
  onNextModal<QFileDialog>([](QFileDialog& dialog) { static_cast<QDialog&>(dialog).accept(); });
  EXPECT_EQ(pickers.folder("Please select an output folder.", "C:\\"), "C:\\");
}

TEST(FilePickers, WhatIsTypedIsReadAsEverywhere) {
  const QTemporaryDir folder;
  const platform::DriveTable drives({{'C', folder.path().toStdString()}});
  DesktopFilePickers pickers(drives);
  ASSERT_TRUE(QDir(folder.path()).mkpath("sub"));
  QFile odd(folder.filePath("x\\y.tgz"));
  ASSERT_TRUE(odd.open(QIODevice::WriteOnly));
  const auto typed = [&](const char* text) {
    onNextModal<QFileDialog>([&](QFileDialog& dialog) {
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(text);
      QTimer::singleShot(0, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) box->close();
      });
      static_cast<QDialog&>(dialog).accept();
      if (dialog.isVisible()) dialog.reject();  // a problem keeps it open
    });
    return pickers.saveFile({"t", "C:\\", "A (*.tgz)|*.tgz|", 1, ""});
  };
  EXPECT_EQ(typed("C:\\sub\\a:b.tgz"), "C:\\sub\\" + platform::holdName("a:b.tgz"));
  EXPECT_EQ(typed("sub\\a.tgz"), "C:\\sub\\a.tgz");
  EXPECT_EQ(typed("x\\y.tgz"), "C:\\" + platform::holdName("x\\y.tgz"));
  EXPECT_EQ(typed("Q:\\a.tgz"), "");
}

TEST(Locale, DatesAndNumbers) {
  const auto at = [](int hour) {
    return static_cast<std::time_t>(QDateTime(QDate(2004, 3, 9), QTime(hour, 0, hour)).toSecsSinceEpoch());
  };
  const Locale american(QLocale(QLocale::English, QLocale::UnitedStates));
  EXPECT_EQ(american.dateTimeText(at(15)), "3/9/04 3:00:15 PM");
  EXPECT_EQ(american.dateTimeText(at(0)), "3/9/04");
  const Locale german(QLocale(QLocale::German, QLocale::Germany));
  EXPECT_EQ(german.dateTimeText(at(9)), "09.03.04 09:00:09");
  EXPECT_EQ(german.numberText(1234567), "1.234.567");
  EXPECT_EQ(german.decimalText(1.5, 2), "1,50");
  const Locale plain(QLocale::c());
  EXPECT_EQ(plain.numberText(999), "999");
  EXPECT_EQ(plain.numberText(18446744073709551615ULL), "18,446,744,073,709,551,615");
  EXPECT_EQ(plain.decimalText(1.125, 2), "1.13");
}

TEST(Locale, EveryTimeHasSecondsAndNoTimeZone) {
  const QDateTime moment(QDate(2004, 3, 9), QTime(15, 21, 47));
  for (const QLocale& language :
       QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
    const QString text = QString::fromStdString(Locale(language).dateTimeText(moment.toSecsSinceEpoch()));
    EXPECT_TRUE(text.contains(language.toString(47))) << language.name().toStdString();
    EXPECT_FALSE(text.contains("UTC") || text.contains("()") || text.endsWith(' ')) << text.toStdString();
  }
}

/// Each visible text is plain, uncut and has a name for assistive tools.
void checkTexts(QDialog& form) {
  form.show();
  for (auto* label : form.findChildren<QLabel*>()) {
    EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->objectName().toStdString();
    EXPECT_FALSE(label->text().isEmpty()) << label->objectName().toStdString();
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
    EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
  }
  QAccessibleInterface* window = QAccessible::queryAccessibleInterface(&form);
  EXPECT_EQ(window->text(QAccessible::Name), form.windowTitle());
}

TEST(frmAbout, CaptionsAndOkHandsOverTheFocus) {
  QWidget mainWindow;
  mainWindow.setFocusPolicy(Qt::StrongFocus);
  mainWindow.show();
  shell::frmAbout about(&mainWindow);
  checkTexts(about);
  EXPECT_EQ(about.windowTitle(), QString("About Pakrune"));
  EXPECT_EQ(about.findChild<QLabel*>("lblVersion")->text(), QString("Version 1.0.0"));
  EXPECT_EQ(about.findChild<QLabel*>("Label2")->text(), QString("Halvoren, Inc."));
  about.findChild<QPushButton*>("cmdOK")->click();
  QApplication::processEvents();
  EXPECT_FALSE(about.isVisible());
  EXPECT_TRUE(mainWindow.hasFocus());
}

template <typename Notice>
void checkNotice(const char* caption) {
  SettingsWorld world;
  using platform::Hive;
  ASSERT_TRUE(
      world.registry.write(Hive::LocalMachine, world.key, "FirstRun", {platform::ValueType::Text, "1"}));
  for (const bool tick : {false, true}) {
    Notice notice(world.settings);
    checkTexts(notice);
    EXPECT_EQ(notice.windowTitle(), QString(caption));
    EXPECT_EQ(notice.template findChild<QCheckBox*>("checkNoShow")->text(), QString("Dont Show This Again"));
    notice.template findChild<QCheckBox*>("checkNoShow")->setChecked(tick);
    notice.reject();
    EXPECT_EQ(world.firstRun(), "1");  // only OK writes
    notice.show();
    notice.template findChild<QPushButton*>("OKButton")->click();
    EXPECT_FALSE(notice.isVisible());
    EXPECT_EQ(world.firstRun(), tick ? "0" : "1");
  }
}

TEST(Dialog, TickedBoxSilencesTheNotice) { checkNotice<shell::Dialog>("Pakrune: Admin Error"); }
TEST(frmPermsError, TickedBoxSilencesTheNotice) { checkNotice<shell::frmPermsError>("Pakrune: Notice"); }

}  // namespace
