#include "platform/HeldName.h"
#include "platform/desktop/ScrollList.h"
#include "tests/forms/MainWindow.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* key = tests::settingsKey;
using tests::MainTest;
using tests::the;

TEST_F(MainTest, LogPaneShowsEveryLineAndTheEnd) {
  load({});
  auto* pane = find<QPlainTextEdit>("txtLog");
  EXPECT_TRUE(QRegularExpression("^Log start: \\d\\d:\\d\\d:\\d\\d$").match(pane->toPlainText()).hasMatch());
  EXPECT_FALSE(pane->isVisible());
  const int before = find("frameMain")->height();
  action("mnuShowLog")->trigger();
  EXPECT_TRUE(pane->isVisible());
  EXPECT_EQ(action("mnuShowLog")->text(), QString("Hide Log"));
  EXPECT_GE(pane->geometry().top(), find("frameMain")->geometry().bottom());
  program_object_.log.append(" Created file: C:\\a");
  EXPECT_TRUE(pane->textCursor().atEnd() && pane->toPlainText().endsWith(" Created file: C:\\a"));
  action("mnuShowLog")->trigger();
  EXPECT_EQ(find("frameMain")->height(), before);
}

TEST_F(MainTest, TheNewArchiveIsTheCurrentRowAndTheLogsLastLineStaysInSight) {
  for (const std::string& name : numbered("pkg/f", 80)) write(name);
  ASSERT_TRUE(load({"pkg/a.txt"}));
  onFilledModal([](QWidget& form) {
    tests::the<QLineEdit>(form, "txtFileOut").setText("C:\\pkg\\zz.tgz");
    tests::press(form, "cmdTar");
  });
  find<QPushButton>("cmdTar")->click();
  auto* pane = find<QTreeView>("DirPane");
  EXPECT_EQ(pane->currentIndex().data(), "zz.tgz");
  EXPECT_TRUE(pane->viewport()->rect().contains(pane->visualRect(pane->currentIndex())));
  EXPECT_EQ(selected(), std::vector<std::string>{"C:\\pkg\\a.txt"});
  auto* last = find<QLabel>("lblLast");
  EXPECT_TRUE(last->isVisible() && last->text().endsWith(" Created file: C:\\pkg\\zz.tgz"));
  program_object_.log.append("two\r\n<b>lines</b>");
  EXPECT_EQ(last->text(), "<b>lines</b>");
  action("mnuShowLog")->trigger();
  EXPECT_FALSE(last->isVisible());
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
  for (const char* name : {"chown.exe", "chgrp.exe"}) tool(name, "echo \"$0 $*\" >>'" + host("runs") + "'");
  tool("dos2unix.exe", "echo done.");
  load({"pkg/a.txt"});
  find<QPushButton>("cmdDos2Unix")->click();
  EXPECT_TRUE(testworld::has(logText(), " dos2unix successfull: 1 files in C:\\pkg\\"));
  EXPECT_EQ(find<QPushButton>("cmdDos2Unix")->text(), QString("dos2unix"));
  EXPECT_EQ(find<QPushButton>("cmdSetGroup")->text(), QString("Set Goup"));
  find<QPushButton>("cmdSetGroup")->click();
  EXPECT_EQ(find<QPushButton>("cmdSetGroup")->text(), QString("Set Group"));
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
  EXPECT_TRUE(testworld::has(bytes("runs"), "chown.exe -R usr5 " + host("pkg/a.txt")));
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
    EXPECT_EQ(modal.findChild<QLabel*>("lblItems")->text().toStdString(), window_.selectionText());
    window_.browsing().openDirPane();  // the items are those of the click
    modal.findChild<QPushButton*>("cmdSetP")->click();
  });
  find<QPushButton>("cmdSetPerms")->click();
  EXPECT_TRUE(shut && find<QPushButton>("cmdSetPerms")->isEnabled());
  EXPECT_TRUE(testworld::has(logText(), " Permissions automatically set: 1 items in C:\\pkg\\"));
  EXPECT_EQ(mode("pkg/sub/x"), 0644U);
  ASSERT_TRUE(action("mnuUndoPermissions")->isVisible());
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
    EXPECT_TRUE(testworld::has(person_.told.back(), std::string("Unable to locate '") + missing));
  }
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
    EXPECT_EQ(selected().size(), name == std::string("a.txt") ? 1U : 3U);
    form->findChild<QPushButton*>("cmdSetP")->click();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window_.findChild<QDialog*>("frmPermissions"), nullptr);
    EXPECT_TRUE(window_.isVisible());
  }
  EXPECT_TRUE(testworld::has(logText(), " Permissions automatically set: 3 items in C:\\pkg\\"));
  EXPECT_TRUE(load({"-perms", "pkg"}));
  person_.told.clear();
  fs::remove(root_ + "/prog/bin/find.exe");
  EXPECT_FALSE(load({"-perms", "pkg"})) << "whatever the record holds";
  EXPECT_TRUE(person_.told.at(0).starts_with("Unable to Set Permissions|"));
}

TEST_F(MainTest, OptionsAndAboutOpen) {
  load({});
  tests::onNextModal<QDialog>([](QDialog& options) { tests::press(options, "cmdOK"); });
  action("mnuOptions")->trigger();
  EXPECT_EQ(stored_.usr8(), "1");
  QTest::mouseClick(find("lblHalvoren"), Qt::LeftButton);
  const auto* const about = find<QDialog>("frmAbout");
  EXPECT_TRUE(about->isVisible() && !about->isModal());
  action("mnuAbout")->trigger();
  EXPECT_EQ(window_.findChildren<QDialog*>("frmAbout").size(), 1);
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
  setenv("PAKRUNE_WINVER", "1.4.10", 1);  // an old system has no owners
  load({});
  EXPECT_FALSE(find("cmdSetOwner")->isEnabled() || find("cmdSetGroup")->isEnabled());
}

TEST_F(MainTest, TheFirstRunTellsOfModesThatDoNotStickAndOfMissingPrivileges) {
  fs::remove(root_ + "/prog/bin/chmod.exe");
  link("true", "chmod.exe");
  storeFirstRun();
  setenv("PAKRUNE_WINVER", "2.5.1", 1);
  for (const bool admin : {true, false}) {
    setenv("PAKRUNE_ADMIN", admin ? "1" : "0", 1);
    QString noticed;
    tests::onNextModal<QWidget>([&noticed](QWidget& modal) {
      noticed = modal.windowTitle();
      modal.close();
    });
    load({});
    EXPECT_EQ(noticed, admin ? "Pakrune: Notice" : "Pakrune: Admin Error");
    EXPECT_EQ(program_object_.isAdmin, admin);
  }
}

TEST_F(MainTest, ClosingRemembersTheFolderAndTheLook) {
  load({"-d", "C:\\pkg\\sub"});
  EXPECT_EQ(window_.GetDir1Path(), "C:\\pkg\\sub\\");
  const auto splitter = [](const QWidget& window) {
    return QAccessible::queryAccessibleInterface(&the(window, "divider"))->valueInterface();
  };
  window_.resize(720, 510);
  splitter(window_)->setCurrentValue(40);
  find<QTreeView>("DirPane")->header()->resizeSection(1, 123);
  window_.move(5000, 5000);
  window_.close();
  EXPECT_EQ(stored_.initDir(), "C:\\pkg\\sub");
  shell::frmMain next(program_object_, pickers_);
  next.Load({});
  EXPECT_EQ(next.GetDir1Path(), "C:\\pkg\\sub\\");
  next.show();
  EXPECT_EQ(next.size(), QSize(720, 510));
  EXPECT_TRUE(next.screen()->availableGeometry().contains(next.geometry()));
  EXPECT_EQ(splitter(next)->currentValue(), 40);
  EXPECT_EQ(the<QTreeView>(next, "DirPane").header()->sectionSize(1), 123);
  next.hide();
  stored_.setInitDir("C:\\gone");
  shell::frmMain third(program_object_, pickers_);
  third.Load({});
  EXPECT_EQ(third.GetDir1Path(), "C:\\");
  QTimer::singleShot(0, qApp, &QApplication::quit);
  QApplication::exec();  // else no dialog's loop would run after the end that was asked for
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

TEST_F(MainTest, AStartListsItsFolderOnceAndInAWindow) {
  tool("ls.exe", "pwd >> " + root_ + "/runs\nexec /usr/bin/ls \"$@\"");
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

TEST_F(MainTest, AStartSelectsWhatExistsAndOpensASingleArchive) {
  std::string opened;
  tests::onNextModal<QWidget>([&opened](QWidget& modal) {
    opened = modal.objectName().toStdString();
    modal.close();
  });
  ASSERT_TRUE(load({"-pack", "pkg", "a.txt"}));
  EXPECT_EQ(opened + selected().at(0), "frmTarC:\\pkg\\a.txt");
  output("tar -C " + host("pkg") + " -czf " + host("pkg/one.tgz") + " a.txt sub");
  using Names = std::vector<std::string>;
  const std::string at = "C:\\pkg\\";
  const std::tuple<Names, Names, bool> cases[] = {
      {{"-perms", "pkg", "b c.txt", "nothing", "sub"}, {at + "sub", at + "b c.txt"}, false},
      {{"pkg/a.txt", "pkg/gone", "pkg/b c.txt"}, {at + "a.txt", at + "b c.txt"}, false},
      {{"-open", "pkg", "gone.tgz"}, {}, false},
      {{"-open", "pkg", "one.tgz"}, {}, true},
      {{"pkg/one.tgz"}, {at + "one.tgz"}, true}};
  for (const auto& [arguments, names, opens] : cases) {
    ASSERT_TRUE(load(arguments)) << arguments.front();
    EXPECT_TRUE(window_.isVisible());
    EXPECT_EQ(find("frameUntar")->isVisible(), opens) << arguments.front();
    EXPECT_TRUE(opens || selected() == names) << testing::PrintToString(selected());
  }
  EXPECT_EQ(find<QTreeView>("tarTree")->model()->rowCount(), 2);
  EXPECT_TRUE(find("frameUntar")->autoFillBackground());  // the browser lies below it
  EXPECT_FALSE(find("frameMain")->isEnabled() || find<QMenu>("mnuDownload")->isEnabled());
  EXPECT_EQ(find<QLineEdit>("txtFileIn")->text(), QString("C:\\pkg\\one.tgz"));
  find<QPushButton>("cmdCancel")->click();
  EXPECT_FALSE(find("frameUntar")->isVisible());
  EXPECT_TRUE(find("frameMain")->isEnabled());
  EXPECT_TRUE(find<QMenu>("mnuDownload")->isEnabled());  // the archive is still the one selected file
}

TEST_F(MainTest, AFailingExtractionTellsWhy) {
  output("cd " + host("pkg") + " && tar -cPf up.tar a.txt ../pkg/sub && echo none >bad.tar");
  EXPECT_FALSE(load({"-extract", "pkg", "up.tar", "C:\\new"}));
  EXPECT_EQ(program_object_.exitStatus, 1);
  EXPECT_TRUE(fs::exists(host("new/a.txt")));
  EXPECT_TRUE(testworld::has(person_.told.back(),
                             "Not extracted, its name leads out of the output folder: ../pkg/sub"));
  EXPECT_FALSE(load({"-extract", "pkg", "bad.tar", "C:\\none"}));
  EXPECT_EQ(person_.told.back(), "Pakrune|Nothing to extract");
  EXPECT_EQ(program_object_.exitStatus, 1);
  EXPECT_FALSE(load({"-extract", "pkg", "up.tar", "C:\\pkg\\a.txt"}));
  EXPECT_EQ(person_.told.back(), "Pakrune|Error: Unable to create folder C:\\pkg\\a.txt\\: Not a directory");
  const std::string deep = "C:\\" + std::string(300, 'n') + "\\x";
  EXPECT_FALSE(load({"-extract", "pkg", "up.tar", deep}));
  EXPECT_TRUE(person_.told.back().ends_with("\\x\\: File name too long")) << person_.told.back();
}

TEST_F(MainTest, QuickPackEndsTheProgram) {
  EXPECT_FALSE(load({"-qpack", "pkg", "a.txt", "sub"}));
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(output("tar -tf " + host("pkg/pkg.tgz")), "a.txt\nsub/\nsub/x\n");
}

}  // namespace
