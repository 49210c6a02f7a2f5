#include "platform/HeldName.h"
#include "platform/desktop/ScrollList.h"
#include "tests/forms/MainWindow.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* key = tests::settingsKey;
using tests::MainTest;

QStringList labels(const QWidget& window) {
  QStringList texts;
  for (const QLabel* label : window.findChildren<QLabel*>()) texts.append(label->text());
  return texts;
}

TEST_F(MainTest, MenuBarHasItsItemsAndHidesTheRest) {
  load({});
  struct Item {
    const char* name;
    const char* caption;
    bool shown;
  };
  for (const Item& item :
       {Item{"mnuExit", "E&xit", true}, Item{"mnuAdmin", "&Admin Test", false},
        Item{"mnuReset", "&Reset..", false}, Item{"mnuShowLog", "Show Log", true},
        Item{"mnuOptions", "Options...", true}, Item{"mnuwdxoptions", "Download Options..", false},
        Item{"mnuSerial", "Serial Download to Kt500..", true},
        Item{"mnuNetwork", "Network Download to Kt500..", true}, Item{"mnuContent", "Content", true},
        Item{"mnuAbout", "About", true}, Item{"mnuFilterTollTip", "", false}}) {
    EXPECT_EQ(action(item.name)->text(), QString(item.caption));
    EXPECT_EQ(action(item.name)->isVisible(), item.shown) << item.name;
  }
  QStringList shown;
  for (const QAction* entry : window_.menuBar()->actions())
    if (entry->isVisible()) shown.append(entry->text());
  EXPECT_EQ(shown, QStringList({"&Menu", "&Tools", "&Download", "&Help"}));
  EXPECT_EQ(window_.windowTitle(), QString("Pakrune"));
}

TEST_F(MainTest, LogPaneShowsEveryLineAndTheEnd) {
  load({});
  auto* pane = find<QPlainTextEdit>("txtLog");
  EXPECT_TRUE(QRegularExpression("^Log start: \\d\\d:\\d\\d:\\d\\d$").match(pane->toPlainText()).hasMatch())
      << logText();
  EXPECT_FALSE(pane->isVisible());
  const int before = find("frameMain")->height();
  action("mnuShowLog")->trigger();
  EXPECT_TRUE(pane->isVisible());
  EXPECT_EQ(action("mnuShowLog")->text(), QString("Hide Log"));
  EXPECT_LT(find("frameMain")->height(), before);
  EXPECT_GE(pane->geometry().top(), find("frameMain")->geometry().bottom());
  program_object_.log.append(" Created file: C:\\a");
  EXPECT_TRUE(pane->textCursor().atEnd());
  EXPECT_TRUE(pane->toPlainText().endsWith(" Created file: C:\\a"));
  action("mnuShowLog")->trigger();
  EXPECT_EQ(find("frameMain")->height(), before);
}

TEST_F(MainTest, KeysWorkFromEveryControl) {
  load({"-d", "C:\\pkg"});
  window_.activateWindow();
  action("mnuShowLog")->trigger();
  int files = 3;  // two shown files and a folder
  for (QWidget* control : window_.findChildren<QWidget*>()) {
    if (!control->isVisible() || !control->isEnabled() || (control->focusPolicy() & Qt::TabFocus) == 0)
      continue;
    control->setFocus();
    write("pkg/new" + std::to_string(++files));
    QTest::keyClick(control, Qt::Key_F5);
    EXPECT_EQ(window_.paneItems().size(), static_cast<std::size_t>(files))
        << control->objectName().toStdString();
    window_.browsing().clearCurrentRow();
    auto* box = qobject_cast<QLineEdit*>(control);
    control->setFocus();
    QTest::keyClick(control, Qt::Key_A, Qt::ControlModifier);
    const bool editable = box != nullptr && !box->isReadOnly();
    EXPECT_EQ(program_object_.selection.selectedCount() == static_cast<std::size_t>(files), !editable)
        << control->objectName().toStdString();
    window_.browsing().openDirPane();
  }
}

TEST_F(MainTest, HelpIsAskedForByKeyAndMenu) {
  load({});
  QTest::keyClick(&window_, Qt::Key_F1);
  action("mnuContent")->trigger();
  EXPECT_EQ(QString::fromStdString(logText()).count(" Unable to open: " + QString::fromStdString(program_) +
                                                    "Pakrune.chm"),
            2);
}

TEST_F(MainTest, WhileAJobRunsMenusDoNothingAndClosingStopsIt) {
  load({"-d", "C:\\pkg"});
  {
    const platform::Busy::Scope job(busy_);
    action("mnuAdmin")->trigger();
    action("mnuAbout")->trigger();
    QTest::keyClick(&window_, Qt::Key_A, Qt::ControlModifier);
    write("pkg/late");
    QTest::keyClick(&window_, Qt::Key_F5);
    EXPECT_TRUE(person_.told.empty() && selected().empty());
    EXPECT_EQ(window_.findChild<QDialog*>("frmAbout"), nullptr);
    EXPECT_EQ(window_.paneItems().size(), 3U);
  }
  EXPECT_EQ(window_.paneItems().size(), 4U);  // listed again once it was over
  {
    const platform::Busy::Scope job(busy_);
    action("mnuExit")->trigger();
    EXPECT_TRUE(busy_.stopRequested());
    EXPECT_TRUE(window_.isVisible());
  }
  EXPECT_TRUE(busy_.endRequested());
}

TEST_F(MainTest, OwnerGroupAndLineEndsRunFromTheirButtons) {
  for (const char* tool : {"chown.exe", "chgrp.exe", "dos2unix.exe"}) {
    const std::string path = root_ + "/prog/bin/" + tool;
    std::ofstream(path) << "#!/bin/sh\necho \"$0 $*\" >>'" << host("runs")
                        << "'\ncase $0 in *dos*) echo done.;; esac\n";
    fs::permissions(path, fs::perms::owner_all);
  }
  load({"pkg/a.txt"});
  find<QPushButton>("cmdDos2Unix")->click();
  EXPECT_TRUE(testworld::has(logText(), " dos2unix successfull: 1 files in C:\\pkg\\"));
  EXPECT_EQ(find<QPushButton>("cmdDos2Unix")->text(), QString("dos2unix"));
  EXPECT_EQ(find<QPushButton>("cmdSetGroup")->text(), QString("Set Goup"));
  find<QPushButton>("cmdSetGroup")->click();
  EXPECT_EQ(find<QPushButton>("cmdSetGroup")->text(), QString("Set Group"));
  EXPECT_TRUE(find<QPushButton>("cmdSetGroup")->isEnabled());
  EXPECT_EQ(person_.told.back(), "Setting Group..|This will set the group for 1 selected files");
  bool shut = false;
  tests::onNextModal<QWidget>([this, &shut](QWidget& modal) {
    EXPECT_EQ(modal.windowTitle(), QString("Set Owner"));
    auto* const button = modal.findChild<QPushButton*>("cmdSetOwner");
    meanwhile_ = [&, button] { shut |= !button->isEnabled() && button->text() == "Setting.."; };
    modal.findChild<platform::desktop::ScrollList*>("listOwner")->setTopIndex(4);
    button->click();
    meanwhile_ = {};
    EXPECT_FALSE(modal.isVisible());
  });
  find<QPushButton>("cmdSetOwner")->click();
  EXPECT_TRUE(shut);
  EXPECT_TRUE(testworld::has(logText(), " Owner(usr5) successfully set: 1 files in C:\\pkg\\"));
  EXPECT_NE(bytes("runs").find("chown.exe -R usr5 " + host("pkg/a.txt")), std::string::npos) << bytes("runs");
  window_.browsing().openDirPane();
  person_.agrees = false;
  find<QPushButton>("cmdSetOwner")->click();
  EXPECT_EQ(person_.told.back(),
            "Warning..|This will change the owner for all files and subdirectories under:\rC:\\pkg");
}

TEST_F(MainTest, PermissionsAreSetFromTheirButtonAndTakenBackFromTheMenu) {
  load({"pkg/sub"});
  const auto mode = [this](const char* name) {
    return static_cast<unsigned>(fs::status(host(name)).permissions()) & 07777U;
  };
  fs::permissions(host("pkg/sub/x"), fs::perms(0600));
  EXPECT_FALSE(action("mnuUndoPermissions")->isVisible());
  bool shut = false;
  meanwhile_ = [&] { shut |= busy_.held() && !find<QPushButton>("cmdSetPerms")->isEnabled(); };
  onFilledModal([this](QWidget& modal) {
    EXPECT_EQ(modal.windowTitle(), QString("Set Permissions"));
    EXPECT_EQ(modal.findChild<QLabel*>("lblItems")->text().toStdString(), window_.selectionText());
    window_.browsing().openDirPane();  // the items are those of the click
    modal.findChild<QPushButton*>("cmdSetP")->click();
  });
  find<QPushButton>("cmdSetPerms")->click();
  EXPECT_TRUE(shut && find<QPushButton>("cmdSetPerms")->isEnabled());
  EXPECT_TRUE(testworld::has(logText(), " Permissions automatically set: 1 items in C:\\pkg\\"));
  EXPECT_EQ(mode("pkg/sub/x"), 0644U);
  ASSERT_TRUE(action("mnuUndoPermissions")->isVisible());
  EXPECT_EQ(action("mnuUndoPermissions")->text(), QString("Undo Set Permissions"));
  action("mnuUndoPermissions")->trigger();
  EXPECT_EQ(mode("pkg/sub/x"), 0600U);
  EXPECT_TRUE(testworld::has(logText(), " Undo Set Permissions: 1 restored, 0 left as they are"));
  EXPECT_FALSE(action("mnuUndoPermissions")->isEnabled());
}

TEST_F(MainTest, PermissionsOfAWholeFolderAreAskedFor) {
  const std::string question =
      "Warning..|This will change permissions for all files and subdirectories under:\rC:\\pkg";
  load({"-d", "C:\\pkg"});
  person_.agrees = false;
  find<QPushButton>("cmdSetPerms")->click();
  EXPECT_EQ(person_.told, std::vector{question});
  EXPECT_EQ(window_.findChild<QDialog*>("frmPermissions"), nullptr);
  person_.agrees = true;
  onFilledModal([this](QWidget& modal) {
    EXPECT_EQ(selected().size(), 3U);
    modal.findChild<QPushButton*>("cmdCancel")->click();
  });
  find<QPushButton>("cmdSetPerms")->click();
  for (const char* missing : {"chmod.exe", "find.exe"}) {
    fs::remove(root_ + "/prog/bin/" + missing);
    find<QPushButton>("cmdSetPerms")->click();
    EXPECT_EQ(person_.told.back(), std::string("Unable to Set Permissions|Error: Unable to locate '") +
                                       missing + "'.\r\nTry reinstalling Pakrune or Cygwin");
  }
  EXPECT_EQ(window_.findChild<QDialog*>("frmPermissions"), nullptr);
}

TEST_F(MainTest, PermissionsAtTheStartStandBesideTheWindow) {
  person_.agrees = false;
  ASSERT_TRUE(load({"-perms", "pkg", "nothing"}));
  EXPECT_TRUE(window_.isVisible());
  EXPECT_EQ(window_.findChild<QDialog*>("frmPermissions"), nullptr);
  person_.agrees = true;
  for (const char* name : {"nothing", "a.txt"}) {
    ASSERT_TRUE(load({"-perms", "pkg", name}));
    const QPointer<QDialog> form = find<QDialog>("frmPermissions");
    EXPECT_TRUE(window_.isVisible() && form->isVisible() && !form->isModal());
    EXPECT_EQ(form->windowTitle(), QString("Pakrune - Set Permissions"));
    EXPECT_EQ(selected().size(), name == std::string("a.txt") ? 1U : 3U);
    form->findChild<QPushButton*>("cmdSetP")->click();
    EXPECT_TRUE(form.isNull() || !form->isVisible());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window_.findChild<QDialog*>("frmPermissions"), nullptr);
    EXPECT_TRUE(window_.isVisible());
  }
  EXPECT_TRUE(testworld::has(logText(), " Permissions automatically set: 3 items in C:\\pkg\\"));
}

TEST_F(MainTest, OptionsOpenFromTheMenu) {
  load({});
  bool opened = false;
  tests::onNextModal<QDialog>([&opened](QDialog& options) {
    opened = options.windowTitle() == "Options";
    tests::press(options, "cmdOK");
  });
  action("mnuOptions")->trigger();
  EXPECT_TRUE(opened);
  EXPECT_EQ(stored_.usr8(), "1");
}

TEST_F(MainTest, AboutOpensFromTheLabelAndTheMenu) {
  load({});
  QTest::mouseClick(find("lblHalvoren"), Qt::LeftButton);
  auto* about = window_.findChild<QDialog*>("frmAbout");
  ASSERT_NE(about, nullptr);
  EXPECT_TRUE(about->isVisible());
  EXPECT_FALSE(about->isModal());
}

TEST_F(MainTest, AdminTestTellsWhatTheSystemSays) {
  load({});
  const auto told = [this](const char* version, const char* admin) {
    setenv("PAKRUNE_WINVER", version, 1);
    setenv("PAKRUNE_ADMIN", admin, 1);
    action("mnuAdmin")->trigger();
    return person_.told.back();
  };
  EXPECT_EQ(told("2.10.0", "1"),
            "Pakrune|Unable to check for administrative priveleges on this version of Windows");
  EXPECT_EQ(told("2.5.1", "1"), "Pakrune|You have administrative privileges!");
  EXPECT_EQ(told("2.5.1", "0"), "Pakrune|You are not an administrator");
}

TEST_F(MainTest, WithoutPrivilegesTheNoticeComesOnlyOnTheFirstRun) {
  setenv("PAKRUNE_WINVER", "2.5.1", 1);
  setenv("PAKRUNE_ADMIN", "0", 1);
  storeFirstRun();
  bool noticed = false;
  tests::onNextModal<QWidget>([&noticed](QWidget& modal) {
    noticed = modal.objectName() == "Dialog" && modal.windowTitle() == "Pakrune: Admin Error";
    EXPECT_EQ(labels(modal),
              QStringList({"You must have Administrative privileges to change file permissions/ownership.",
                           "These features may not work unless you obtain proper privileges.",
                           "Please contact your system Administrator for more information."}));
    modal.close();
  });
  load({});
  EXPECT_TRUE(noticed);
  EXPECT_TRUE(testworld::has(logText(), "\nYou don't have administrative privileges!"));
  EXPECT_FALSE(program_object_.isAdmin);
}

TEST_F(MainTest, WhereModesDoNotStickANoticeSaysSo) {
  fs::remove(root_ + "/prog/bin/chmod.exe");
  link("true", "chmod.exe");
  storeFirstRun();
  tests::onNextModal<QWidget>([](QWidget& modal) {
    EXPECT_EQ(modal.windowTitle(), QString("Pakrune: Notice"));
    EXPECT_EQ(
        labels(modal),
        QStringList({"Pakrune has detected that the 'Set Permissions' feature will most likely NOT work.",
                     "This is due to one or more of the following reasons:",
                     "- You do not have proper privileges on the machine where this application resides",
                     "- Permissions cannot be modified for files/folders residing on a FAT32 partition"}));
    modal.findChild<QCheckBox*>("checkNoShow")->click();
    modal.findChild<QPushButton*>("OKButton")->click();
  });
  load({});
  EXPECT_FALSE(stored_.firstRun());
}

TEST_F(MainTest, MissingToolsAreReportedAndTheWindowOpens) {
  fs::remove(root_ + "/prog/bin/tar.exe");
  EXPECT_TRUE(load({"-d", "C:\\pkg"}));
  ASSERT_EQ(person_.told.size(), 1U);
  EXPECT_TRUE(person_.told[0].starts_with("Error|Please make sure Cygwin binaries (tar.exe)"));
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(MainTest, AnOldSystemHasNoOwners) {
  setenv("PAKRUNE_WINVER", "1.4.10", 1);
  load({});
  EXPECT_FALSE(find("cmdSetOwner")->isEnabled());
  EXPECT_FALSE(find("cmdSetGroup")->isEnabled());
}

TEST_F(MainTest, ClosingRemembersTheFolder) {
  load({"-d", "C:\\pkg\\sub"});
  EXPECT_EQ(window_.GetDir1Path(), "C:\\pkg\\sub\\");
  window_.close();
  EXPECT_EQ(stored_.initDir(), "C:\\pkg\\sub");
  shell::frmMain next(program_object_, pickers_);
  next.Load({});
  EXPECT_EQ(next.GetDir1Path(), "C:\\pkg\\sub\\");
  stored_.setInitDir("C:\\gone");
  shell::frmMain third(program_object_, pickers_);
  third.Load({});
  EXPECT_EQ(third.GetDir1Path(), "C:\\");
}

TEST_F(MainTest, ClosingWhileItLoadsEndsTheProgram) {
  stored_.setInitDir("C:\\kept");
  meanwhile_ = [this] { window_.close(); };
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {"-d", "C:\\pkg"}, {"-pack", "pkg", "a.txt"}, {"pkg/a.txt"}, {"-open", "pkg", "a.txt"}}) {
    EXPECT_FALSE(load(arguments)) << arguments.front();
    EXPECT_FALSE(window_.isVisible());
  }
  EXPECT_EQ(stored_.initDir(), "C:\\kept");  // no folder was shown
  EXPECT_TRUE(person_.told.empty());
}

TEST_F(MainTest, PermissionsNeedFindWhateverTheRecordHolds) {
  EXPECT_TRUE(load({"-perms", "pkg"}));
  EXPECT_TRUE(window_.isVisible() && person_.told.empty());
  fs::remove(root_ + "/prog/bin/find.exe");
  EXPECT_FALSE(load({"-perms", "pkg"}));
  ASSERT_EQ(person_.told.size(), 1U);
  EXPECT_TRUE(person_.told[0].starts_with("Unable to Set Permissions|")) << person_.told[0];
}

TEST_F(MainTest, AStartListsItsFolderOnceAndInAWindow) {
  const std::string tool = root_ + "/prog/bin/ls.exe";
  fs::remove(tool);
  std::ofstream(tool) << "#!/bin/sh\npwd >> " + root_ + "/runs\nexec /usr/bin/ls \"$@\"\n";
  fs::permissions(tool, fs::perms::owner_all);
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {"-d", "C:\\pkg"}, {"-perms", "pkg", "a.txt"}, {"pkg/a.txt"}, {"-open", "pkg", "gone.tgz"}}) {
    std::ofstream(root_ + "/runs");
    shell::frmMain window(program_object_, pickers_);
    bool seenWithoutModes = false;
    meanwhile_ = [&] { seenWithoutModes |= window.isVisible() && !window.paneItems().empty(); };
    window.Load(shell::parseCommandLine(textOf(arguments)));
    meanwhile_ = {};
    EXPECT_TRUE(seenWithoutModes) << arguments.front();
    EXPECT_EQ(output("grep -c /disk/pkg " + root_ + "/runs"), "1\n") << arguments.front();
  }
}

TEST_F(MainTest, NamedEntriesAreSelected) {
  ASSERT_TRUE(load({"-perms", "pkg", "b c.txt", "nothing", "sub"}));
  EXPECT_EQ(selected(), (std::vector<std::string>{"C:\\pkg\\sub", "C:\\pkg\\b c.txt"}));
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(MainTest, APathListSelectsWhatExists) {
  ASSERT_TRUE(load({"pkg/a.txt", "pkg/gone", "pkg/b c.txt"}));
  EXPECT_EQ(selected(), (std::vector<std::string>{"C:\\pkg\\a.txt", "C:\\pkg\\b c.txt"}));
  EXPECT_FALSE(find("frameUntar")->isVisible());
}

TEST_F(MainTest, ASingleArchiveOpensTheExtractFrame) {
  output("tar -C " + host("pkg") + " -czf " + host("pkg/one.tgz") + " a.txt sub");
  ASSERT_TRUE(load({"pkg/one.tgz"}));
  EXPECT_TRUE(find("frameUntar")->isVisible());
  EXPECT_TRUE(find("frameUntar")->autoFillBackground());  // the browser lies below it
  EXPECT_FALSE(find("frameMain")->isEnabled());
  EXPECT_FALSE(find<QMenu>("mnuDownload")->isEnabled());
  EXPECT_EQ(find<QLineEdit>("txtFileIn")->text(), QString("C:\\pkg\\one.tgz"));
  find<QPushButton>("cmdCancel")->click();
  EXPECT_FALSE(find("frameUntar")->isVisible());
  EXPECT_TRUE(find("frameMain")->isEnabled());
  EXPECT_TRUE(find<QMenu>("mnuDownload")->isEnabled());  // the archive is still the one selected file
}

TEST_F(MainTest, OpenShowsWhatAnArchiveHolds) {
  output("tar -C " + host("pkg") + " -czf " + host("pkg/one.tgz") + " a.txt sub");
  ASSERT_TRUE(load({"-open", "pkg", "one.tgz"}));
  EXPECT_TRUE(find("frameUntar")->isVisible());
  EXPECT_EQ(find<QTreeView>("tarTree")->model()->rowCount(), 2);
}

TEST_F(MainTest, AFailingExtractionTellsWhy) {
  output("cd " + host("pkg") + " && tar -cPf up.tar a.txt ../pkg/sub && echo none >bad.tar");
  EXPECT_FALSE(load({"-extract", "pkg", "up.tar", "C:\\new"}));
  EXPECT_EQ(program_object_.exitStatus, 1);
  EXPECT_TRUE(fs::exists(host("new/a.txt")));
  EXPECT_NE(person_.told.back().find("Not extracted, its name leads out of the output folder: ../pkg/sub"),
            std::string::npos)
      << person_.told.back();
  EXPECT_FALSE(load({"-extract", "pkg", "bad.tar", "C:\\none"}));
  EXPECT_EQ(person_.told.back(), "Pakrune|Nothing to extract");
  EXPECT_EQ(program_object_.exitStatus, 1);
  EXPECT_FALSE(load({"-extract", "pkg", "up.tar", "C:\\pkg\\a.txt"}));
  EXPECT_EQ(person_.told.back(), "Pakrune|Error: Unable to create folder C:\\pkg\\a.txt\\: Not a directory");
}

TEST_F(MainTest, OpenFallsBackToTheBrowserWithoutTheArchive) {
  ASSERT_TRUE(load({"-open", "pkg", "gone.tgz"}));
  EXPECT_FALSE(find("frameUntar")->isVisible());
  EXPECT_EQ(window_.GetDir1Path(), "C:\\pkg\\");
}

TEST_F(MainTest, PackOpensTheArchiveDialog) {
  bool opened = false;
  tests::onNextModal<QWidget>([&opened](QWidget& modal) {
    opened = modal.objectName() == "frmTar";
    modal.close();
  });
  ASSERT_TRUE(load({"-pack", "pkg", "a.txt"}));
  EXPECT_TRUE(opened);
  EXPECT_EQ(selected(), std::vector<std::string>{"C:\\pkg\\a.txt"});
}

TEST_F(MainTest, QuickPackEndsTheProgram) {
  EXPECT_FALSE(load({"-qpack", "pkg", "a.txt", "sub"}));
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(output("tar -tf " + host("pkg/pkg.tgz")), "a.txt\nsub/\nsub/x\n");
}

}  // namespace
