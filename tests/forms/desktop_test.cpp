#include "platform/HeldName.h"
#include "platform/desktop/InputBox.h"
#include "platform/desktop/Locale.h"
#include "platform/desktop/Text.h"
#include "shell/ui/DesktopUser.h"
#include "shell/ui/Dialog.h"
#include "shell/ui/frmAbout.h"
#include "shell/ui/frmPermsError.h"
#include "tests/forms/Forms.h"

namespace {

using namespace platform::desktop;
using runtime::Answer;
using runtime::Buttons;
using runtime::Icon;
using tests::onNextModal;
using tests::press;
using tests::the;

TEST(Text, LineEndsAndNamesSurviveTheControl) {
  EXPECT_EQ(toControl("a\r\nb\rc\n\r\r\n"), QString("a\nb\nc\n\n\n"));
  const std::string held = "C:\\\xEF\x80\xBA\xC3\xA9\xEF\x83\xBF";  // held ':', 'é', held byte FF
  EXPECT_EQ(fromControl(toControl(held)), held);
  EXPECT_EQ(toShown("x\xEF\x80\xBA\ry"), QString("x:\ny"));
  EXPECT_FALSE(toPlainTip("<b>a&").contains("<b>"));
}

TEST(DesktopUser, BoxIsExactlyTheGivenOne) {
  using Box = QMessageBox;
  constexpr auto escape = Box::NoButton;
  const std::tuple<Buttons, Icon, Box::Icon, Box::StandardButton, Answer> cases[] = {
      {Buttons::Ok, Icon::None, Box::NoIcon, escape, Answer::Ok},
      {Buttons::OkCancel, Icon::Critical, Box::Critical, escape, Answer::Cancel},
      {Buttons::OkCancel, Icon::Information, Box::Information, Box::Ok, Answer::Ok},
      {Buttons::YesNo, Icon::Exclamation, Box::Warning, Box::Yes, Answer::Yes},
      {Buttons::YesNo, Icon::None, Box::NoIcon, escape, Answer::No}};
  platform::Busy busy;
  shell::DesktopUser user(busy);
  for (const auto& [buttons, icon, shown, pressed, answer] : cases) {
    onNextModal<Box>([&, count = buttons == Buttons::Ok ? 1 : 2, picture = shown, key = pressed](Box& box) {
      EXPECT_EQ((box.windowTitle() + '|' + box.text()), "Warning..|<b>one</b>\ntwo & three");
      EXPECT_TRUE(box.textFormat() == Qt::PlainText && box.icon() == picture);
      EXPECT_EQ(box.buttons().size(), count);
      key == escape ? QTest::keyClick(&box, Qt::Key_Escape) : box.button(key)->click();
    });
    EXPECT_EQ(user.message("<b>one</b>\rtwo & three", buttons, icon, "Warning.."), answer);
  }
}

TEST(DesktopUser, AnExplanationStandsBelowAsPlainText) {
  platform::Busy busy;
  onNextModal<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.text() + "|" + box.informativeText(), "text|<b>a</b>\nb");
    for (const QLabel* label : box.findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
    box.close();
  });
  shell::DesktopUser(busy).explainedMessage("text", "<b>a</b>\rb", Icon::Critical, "title");
}

TEST(DesktopUser, ALongTextStaysOnTheScreenAndIsWholeThere) {
  platform::Busy busy;
  const auto told = [&busy](const std::string& text, bool scrolls) {
    QString shown;
    onNextModal<QMessageBox>([&](QMessageBox& box) {
      const QRect screen = box.screen()->availableGeometry();
      EXPECT_TRUE(screen.contains(box.frameGeometry())) << box.height();
      const auto* const area = box.findChild<QScrollArea*>();
      EXPECT_EQ(area != nullptr, scrolls);
      const auto* const label =
          scrolls ? area->findChild<QLabel*>() : box.findChild<QLabel*>("qt_msgbox_label");
      ASSERT_TRUE(label != nullptr && label->isVisible());
      EXPECT_GE(label->width(), label->minimumSizeHint().width());
      EXPECT_GE(label->height(), label->heightForWidth(label->width()));
      EXPECT_TRUE(!scrolls || label->width() < screen.width() / 2 || label->text().contains("xxx"));
      shown = label->text();
      box.button(QMessageBox::Ok)->click();
    });
    shell::DesktopUser(busy).message(text, Buttons::Ok, Icon::Critical);
    return shown;
  };
  const auto lines = [](int count) { return QString("chmod: a b\n").repeated(count); };
  EXPECT_EQ(told(lines(3).toStdString(), false), lines(3));
  EXPECT_EQ(told(lines(500).toStdString(), true), lines(500));
  EXPECT_EQ(told(lines(70000).toStdString(), true), lines(500) + "(69500 more lines)");
  const QString sentences = (QString("word ").repeated(100) + "\n").repeated(40);
  EXPECT_EQ(told(sentences.toStdString(), true), sentences);
  told("C:\\" + std::string(250, 'x') + " does not exist, create it?", true);
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

struct FilePickersTest : testing::Test {
  QTemporaryDir folder;
  platform::DriveTable drives{{{'C', folder.path().toStdString()}}};
  DesktopFilePickers pickers{drives};
};

TEST_F(FilePickersTest, ChosenFileIsAWindowsPath) {
  ASSERT_TRUE(QFile(folder.filePath("old.tgz")).open(QIODevice::WriteOnly));
  const FileRequest request{"Create Tar File", "C:\\", "A (*.tgz)|*.tgz|All files (*.*)|*.*|", 2, ""};
  for (const bool accept : {true, false}) {
    onNextModal<QFileDialog>([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.windowTitle(), QString("Create Tar File"));
      EXPECT_EQ(dialog.directory().path(), folder.path());
      EXPECT_EQ(dialog.selectedNameFilter(), QString("All files (*.*)"));
      dialog.selectFile("old.tgz");  // an existing name: no question of Qt's own
      static_cast<QDialog&>(dialog).done(accept);
    });
    EXPECT_EQ(pickers.saveFile(request), accept ? "C:\\old.tgz" : "");
  }
  onNextModal<QFileDialog>([](QFileDialog& dialog) { static_cast<QDialog&>(dialog).accept(); });
  EXPECT_EQ(pickers.folder("Please select an output folder.", "C:\\"), "C:\\");
}

TEST_F(FilePickersTest, WhatIsTypedIsReadAsEverywhere) {
  ASSERT_TRUE(QDir(folder.path()).mkpath("sub"));
  ASSERT_TRUE(QFile(folder.filePath("x\\y.tgz")).open(QIODevice::WriteOnly));
  const auto typed = [&](const char* text) {
    onNextModal<QFileDialog>([&](QFileDialog& dialog) {
      the<QLineEdit>(dialog, "fileNameEdit").setText(text);
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

/// The window is shown, its texts are plain and whole, and it has its caption for assistive tools too.
void checkForm(QDialog& form, const char* caption) {
  form.show();
  tests::checkTexts(form);
  for (const auto* label : form.findChildren<QLabel*>())
    EXPECT_TRUE(!label->pixmap().isNull() ||
                (label->textFormat() == Qt::PlainText && !label->text().isEmpty()))
        << label->objectName().toStdString();
  EXPECT_EQ(form.windowTitle(), QString(caption));
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&form)->text(QAccessible::Name), QString(caption));
}

TEST(frmAbout, CaptionsAndOkHandsTheFocusBack) {
  QWidget mainWindow;
  QLineEdit control(&mainWindow);
  mainWindow.show();
  mainWindow.activateWindow();
  control.setFocus();
  shell::frmAbout about(&mainWindow);
  checkForm(about, "About Pakrune");
  about.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&about) && !control.hasFocus());
  press(about, "cmdOK");
  EXPECT_FALSE(about.isVisible());
  EXPECT_TRUE(QTest::qWaitFor([&] { return control.hasFocus(); }));
}

class NoticeTest : public testworld::World {};

TEST_F(NoticeTest, ATickedBoxSilencesItAndOnlyOkWrites) {
  const auto check = [this](QDialog&& notice, const char* caption) {
    stored_.RegWriteString(platform::Hive::LocalMachine, "SOFTWARE\\Halvoren Inc\\Pakrune", "FirstRun", "1");
    for (const bool tick : {false, true}) {
      checkForm(notice, caption);
      the<QCheckBox>(notice, "checkNoShow").setChecked(tick);
      notice.reject();
      EXPECT_TRUE(stored_.firstRun());
      press(notice, "OKButton");
      EXPECT_EQ(stored_.firstRun(), !tick);
    }
  };
  check(shell::Dialog(stored_), "Pakrune: Admin Error");
  check(shell::frmPermsError(stored_), "Pakrune: Notice");
}

}  // namespace
