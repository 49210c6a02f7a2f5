#include <fcntl.h>
#include <sys/stat.h>

#include "browser/ui/ApplyLayout.h"
#include "browser/ui/DirPaneModel.h"
#include "browser/ui/frameMain.h"
#include "browser/ui/frmPattern.h"
#include "platform/Descriptor.h"
#include "platform/HeldName.h"
#include "platform/desktop/DriveList.h"
#include "platform/desktop/FileList.h"
#include "platform/desktop/FolderList.h"
#include "platform/desktop/Gate.h"
#include "platform/desktop/ImageList.h"
#include "runtime/ImageKeys.h"
#include "tests/OrdinaryUser.h"
#include "tests/forms/Forms.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using tests::leftClick;

class Browser : public testworld::World {
 protected:
  Browser() {
    findTools();
    fs::create_directories(host("sub/inner"));
    fs::create_directories(host("zeta"));
    for (const char* name : {"b.txt", "a.tgz", "C.c", ".hidden", "sub/one"}) write(name, "12345");
    window_.resize(browser::startSize(scale_));
    area_.setGeometry(window_.rect());
    person_.onEvents = [this] {
      QApplication::processEvents();
      if (const auto act = whenEventsRun_) act();
    };
    frame_ = new browser::frameMain(services(), selection_, pickers_, &area_);
    browser::applyLayout(area_, layout_, scale_);
    new QAbstractItemModelTester(tree()->model(), QAbstractItemModelTester::FailureReportingMode::Fatal,
                                 &window_);
    window_.show();
    frame_->openFolder("C:\\");
    QApplication::setActiveWindow(&window_);
    QApplication::processEvents();
  }

  template <typename Control>
  Control* child(const char* name) const {
    return &tests::the<Control>(*frame_, name);
  }
  QTreeView* tree() const { return child<QTreeView>("DirPane"); }
  platform::desktop::FolderList* folders() const { return child<platform::desktop::FolderList>("Dir1"); }
  std::string summary() const { return child<QLineEdit>("txtSelect")->text().toStdString(); }
  Names shown(int column = 0) const {
    Names texts;
    for (int row = 0; row < tree()->model()->rowCount(); ++row)
      texts.push_back(tree()->model()->index(row, column).data().toString().toStdString());
    return texts;
  }
  static QPoint placeIn(const QAbstractItemView& rows, const std::string& name) {
    const auto found = rows.model()->match(rows.model()->index(0, 0), Qt::DisplayRole, name.c_str(), 1,
                                           Qt::MatchExactly | Qt::MatchCaseSensitive);
    EXPECT_FALSE(found.empty()) << "no row " << name;
    return found.empty() ? QPoint() : rows.visualRect(found.front()).center();
  }
  QPoint place(const std::string& name) const { return placeIn(*tree(), name); }
  void clickFolder(const std::string& name) const {
    leftClick(folders()->viewport(), placeIn(*folders(), name));
  }
  void click(const std::string& name, Qt::KeyboardModifiers keys = {}) const {
    leftClick(tree()->viewport(), place(name), keys);
  }
  void doubleClick(const std::string& name) const {
    const QPoint at = place(name);
    leftClick(tree()->viewport(), at);
    QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, at);
  }
  void press(const char* button) const { leftClick(child<QAbstractButton>(button), QPoint(12, 12)); }
  void key(Qt::Key key, Qt::KeyboardModifiers keys = {}) const { QTest::keyClick(tree(), key, keys); }
  void type(const std::string& path) const {
    child<QLineEdit>("txtLocation")->setText(QString::fromStdString(path));
    QTest::keyClick(child<QLineEdit>("txtLocation"), Qt::Key_Return);
  }
  void clickColumn(int column) const {
    const QHeaderView* header = tree()->header();
    leftClick(header->viewport(), {header->sectionViewportPosition(column - 1) + 20, header->height() / 2});
  }
  std::string caption(int column) const {
    return tree()->model()->headerData(column - 1, Qt::Horizontal).toString().toStdString();
  }
  void chooseFilter(int index) const {
    auto* filter = child<QComboBox>("Filter");
    filter->setCurrentIndex(index);
    emit filter->activated(index);
  }

  /// What happens the next time that events run within a listing; nothing else of it.
  void duringListing(const std::function<void()>& act) {
    whenEventsRun_ = [this, act] {
      if (shown(1).empty() || !busy_.held()) return;
      whenEventsRun_ = {};
      act();
    };
  }

  platform::desktop::Gate gate_{busy_};
  std::function<void()> whenEventsRun_;
  tests::Pickers pickers_;
  runtime::Selection selection_;
  browser::Layout layout_;
  QWidget window_;
  QWidget area_{&window_};
  double scale_ = browser::pixelsPerTwip(window_);
  browser::frameMain* frame_ = nullptr;
};

TEST_F(Browser, ListsWithModesSizesAndFoldersFirst) {
  EXPECT_EQ(shown(), (Names{"sub", "zeta", "a.tgz", "b.txt", "C.c"}));
  EXPECT_EQ(shown(1), (Names{"drwxr-xr-x", "drwxr-xr-x", "-rw-r--r--", "-rw-r--r--", "-rw-r--r--"}));
  EXPECT_EQ(shown(2), (Names{"", "", "1 KB ", "1 KB ", "1 KB "}));
  EXPECT_FALSE(shown(3).front().empty());
  EXPECT_EQ(summary(), "C:\\*");
  for (const char* name : {"cmdDirPaneUp", "cmdDos2Unix"}) EXPECT_FALSE(child<QWidget>(name)->isEnabled());
}

TEST_F(Browser, SelectionFollowsMouseAndKeys) {
  QSignalSpy changes(frame_, &browser::frameMain::selectionChanged);
  click("a.tgz");
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(summary(), "1 items (1 files, 0 folders)");
  EXPECT_TRUE(child<QWidget>("cmdDos2Unix")->isEnabled());
  key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(selection_.selectedPaths, (Names{"C:\\a.tgz", "C:\\b.txt"}));
  click("sub", Qt::ControlModifier);
  EXPECT_EQ(summary(), "3 items (2 files, 1 folders)");
  EXPECT_EQ(selection_.selectedPaths, (Names{"C:\\sub", "C:\\a.tgz", "C:\\b.txt"}));
  EXPECT_FALSE(child<QWidget>("cmdDos2Unix")->isEnabled());
  leftClick(tree()->viewport(), {20, tree()->viewport()->height() - 5});
  EXPECT_EQ(summary(), "0 items (0 files, 0 folders)");
  EXPECT_FALSE(tree()->currentIndex().isValid());
  changes.clear();
  press("checkAll");
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(selection_.selectedCount(), 5U);
  EXPECT_TRUE(tree()->hasFocus());
}

TEST_F(Browser, DoubleClickOpensFoldersAndArchives) {
  QSignalSpy archives(frame_, &browser::frameMain::archiveOpened);
  doubleClick("sub");
  EXPECT_EQ(frame_->dir1Path(), "C:\\sub");
  EXPECT_EQ(shown(), (Names{"inner", "one"}));
  EXPECT_EQ(summary(), "C:\\sub\\*");
  EXPECT_EQ(selection_.selectedCount(), 0U);
  EXPECT_TRUE(tree()->hasFocus());
  press("cmdDirPaneUp");
  EXPECT_EQ(frame_->dir1Path(), "C:\\");
  write("B.TGZ");
  fs::rename(host("b.txt"), host("x.ipk"));
  press("cmdRefreshFiles");
  for (const char* name : {"B.TGZ", "C.c", "a.tgz", "x.ipk"}) doubleClick(name);
  Names opened;
  for (const auto& signal : archives) opened.push_back(signal[0].value<std::string>());
  EXPECT_EQ(opened, (Names{"C:\\a.tgz", "C:\\x.ipk"}));
  EXPECT_TRUE(tree()->isEnabled());
}

TEST_F(Browser, KeysOpenAndLeave) {
  QSignalSpy extracts(frame_, &browser::frameMain::extractTar);
  click("sub");
  key(Qt::Key_Return);
  EXPECT_EQ(frame_->dir1Path(), "C:\\sub");
  QTest::keyRelease(tree(), Qt::Key_Backspace);  // pressed elsewhere
  EXPECT_EQ(frame_->dir1Path(), "C:\\sub");
  for (int times = 0; times < 2; ++times) {
    key(Qt::Key_Backspace);
    EXPECT_EQ(frame_->dir1Path(), "C:\\");
  }
  click("b.txt");
  key(Qt::Key_Return);
  click("a.tgz", Qt::ControlModifier);
  key(Qt::Key_Return);
  EXPECT_EQ(extracts.count(), 0);
  click("a.tgz");
  key(Qt::Key_Enter);
  EXPECT_EQ(extracts.count(), 1);
  for (const auto& [end, row] : {std::pair(Qt::Key_Down, 0), {Qt::Key_End, 4}}) {
    frame_->openFolder("C:\\");
    key(end);
    ASSERT_EQ(tree()->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(tree()->selectionModel()->selectedRows().front().row(), row);
  }
}

TEST_F(Browser, TheWayBackAndThePlaceAreKept) {
  const auto current = [this] { return tree()->currentIndex().data().toString().toStdString(); };
  frame_->openFolder("C:\\sub\\inner");
  key(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(frame_->dir1Path() + "|" + current(), "C:\\sub|inner");
  press("cmdDirPaneUp");
  EXPECT_EQ(frame_->dir1Path() + "|" + current(), "C:\\|sub");
  fs::remove_all(host("sub/inner"));
  key(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(frame_->dir1Path(), "C:\\sub");
  key(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(frame_->dir1Path(), "C:\\") << "what has gone is passed over";
  const QPoint emptySpace(20, tree()->viewport()->height() - 5);
  leftClick(tree()->viewport(), emptySpace);
  QTest::mouseClick(tree()->viewport(), Qt::ForwardButton, {}, emptySpace);
  EXPECT_EQ(frame_->dir1Path() + "|" + summary(), "C:\\sub|C:\\sub\\*");
  QTest::mouseClick(tree()->viewport(), Qt::BackButton, {}, emptySpace);
  EXPECT_EQ(current(), "sub") << "it is no click";
  frame_->openFolder("C:\\zeta");
  key(Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(frame_->dir1Path(), "C:\\zeta") << "a new way has no forward";
  frame_->openFolder("C:\\");
  fs::remove_all(host("zeta"));
  key(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(frame_->dir1Path() + "\\", cygwin_.GetEXEPath()) << "the folder that is shown is passed over";
  frame_->openFolder("C:\\");
  for (const char* name : {"D", "E"}) write(name);
  frame_->refreshKeepList();
  click("b.txt");
  for (const char* name : {"a.tgz", "b.txt"}) fs::remove(host(name));
  frame_->refreshKeepList();
  EXPECT_EQ(current(), "C.c") << "the neighbour";
  click("E");
  for (const char* name : {"D", "E"}) fs::remove(host(name));
  for (const char* name : {"0", "1", "2"}) write(name);
  frame_->refreshKeepList();
  EXPECT_EQ(current(), "C.c") << "the one above the last";
}

TEST_F(Browser, ColumnsSortBothWays) {
  clickColumn(4);
  EXPECT_EQ(caption(1) + caption(4), "FilenameModified <");
  click("b.txt");
  key(Qt::Key_1, Qt::ControlModifier);
  EXPECT_EQ(caption(1), "Filename >");
  clickColumn(1);
  EXPECT_EQ(caption(1), "Filename <");
  EXPECT_EQ(shown(), (Names{"C.c", "b.txt", "a.tgz", "zeta", "sub"}));
  frame_->getDirPaneSelected();
  EXPECT_EQ(selection_.selectedPaths, Names{"C:\\b.txt"});
  press("cmdRefreshFiles");
  EXPECT_EQ(shown().front(), "C.c") << "sorted again after a listing";
  fs::permissions(host("a.tgz"), fs::perms::owner_read);
  clickColumn(2);
  press("cmdRefreshFiles");
  EXPECT_EQ(shown().front(), "a.tgz") << "by modes that came later";
}

TEST_F(Browser, RefreshKeepsExactlyWhatIsStillThere) {
  for (const char* name : {"b.txt", "zeta"}) click(name, Qt::ControlModifier);
  fs::remove(host("b.txt"));
  write("B.txt");
  press("cmdRefreshFiles");
  press("optShowHidden");
  EXPECT_EQ(selection_.selectedPaths, Names{"C:\\zeta"});
  ASSERT_EQ(shown()[2], ".hidden");
  EXPECT_TRUE(tree()->model()->index(2, 0).data(Qt::ForegroundRole).isValid());
  EXPECT_FALSE(tree()->model()->index(3, 0).data(Qt::ForegroundRole).isValid());
  EXPECT_TRUE(frame_->selectRow(".hidden"));
  EXPECT_FALSE(frame_->selectRow("gone"));
  EXPECT_EQ(selection_.selectedCount(), 2U);
}

TEST_F(Browser, FilterAndPattern) {
  chooseFilter(6);
  EXPECT_EQ(shown(), (Names{"sub", "zeta", "a.tgz"}));
  for (const int time : {1, 2, 3}) {
    const bool accept = time > 1;
    QTimer::singleShot(0, [&] {
      auto* dialog = qobject_cast<browser::frmPattern*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      EXPECT_LT((dialog->geometry().center() - window_.geometry().center()).manhattanLength(), 10);
      auto& name = tests::the<QLineEdit>(*dialog, "txtFilename");
      EXPECT_EQ(name.text(), QString("*"));
      name.setText("*");
      tests::the<QLineEdit>(*dialog, "txtExtension").setText("c");
      accept ? QTest::keyClick(&name, Qt::Key_Return) : tests::press(*dialog, "cmdCancel");
    });
    QApplication::setActiveWindow(&window_);
    time > 2 ? chooseFilter(9) : key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(shown().back(), accept ? "C.c" : "a.tgz");
    EXPECT_EQ(child<QComboBox>("Filter")->currentIndex(), accept ? 9 : 6);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }
  EXPECT_EQ(window_.focusWidget(), tree());
  frame_->setLoading(true);
  chooseFilter(0);
  EXPECT_EQ(shown().size(), 3U) << "no reaction while the window loads";
}

TEST_F(Browser, FolderListOpensListsAgainAndAsks) {
  clickFolder("sub");
  EXPECT_EQ(shown(), (Names{"inner", "one"}));
  write("sub/two");
  auto* timer = child<QTimer>("Timer1");
  clickFolder("sub");
  EXPECT_TRUE(timer->isActive());
  EXPECT_EQ(shown().size(), 2U);
  clickFolder("sub");
  EXPECT_EQ(shown().size(), 3U) << "two clicks on the open folder list it again";
  EXPECT_TRUE(QTest::qWaitFor([&] { return !timer->isActive(); }, 2000));
  for (const std::string answer : {"", "C:\\zeta", "C:\\gone"}) {
    pickers_.answer = answer;
    QTest::mouseClick(folders()->viewport(), Qt::RightButton, {}, QPoint(5, 5));
    EXPECT_EQ(pickers_.asked.startFolder, answer == "C:\\gone" ? "C:\\zeta" : "C:\\sub");
    EXPECT_EQ(frame_->dir1Path(), answer.empty() ? "C:\\sub" : "C:\\zeta");
  }
  EXPECT_EQ(person_.told, Names{"Error..|Unavailable to access: 'C:\\gone'"});
}

TEST_F(Browser, DrivesAndTypedPaths) {
  auto* drives = child<platform::desktop::DriveList>("Drive1");
  auto* location = child<QLineEdit>("txtLocation");
  EXPECT_TRUE(drives->setDrive("Z:"));
  EXPECT_EQ(frame_->dir1Path(), "Z:\\");
  fs::rename(host(""), root_ + "/away");
  EXPECT_TRUE(drives->setDrive("C:"));
  EXPECT_EQ(person_.told, Names{"Error..|Drive unavailable 'C:'"});
  EXPECT_EQ(drives->drive() + frame_->dir1Path(), "Z:Z:\\");
  fs::rename(root_ + "/away", host(""));
  fs::create_directory(host("a:b"));
  for (const auto& [typed, opened] : {std::pair<std::string, std::string>("c:/sub/", "C:\\sub"),
                                      {host("zeta"), "C:\\zeta"},
                                      {"C:\\sub\\..\\a:b", "C:\\" + platform::holdName("a:b")},
                                      {"nonsense", "C:\\" + platform::holdName("a:b")}}) {
    type(typed);
    EXPECT_EQ(frame_->dir1Path(), opened) << typed;
    EXPECT_EQ(location->text().toStdString(), typed == "nonsense" ? typed : opened);
    EXPECT_EQ(drives->drive(), "C:");
  }
  EXPECT_EQ(person_.told.back(),
            "Error..|Unavailable to access: 'C:\\" + platform::holdName("a:b") + "\\nonsense'");
  for (const std::string name : {"one", "two"}) {
    write("sub/" + name);  // the second one after its folder was listed
    type("c:/sub/" + name);
    EXPECT_EQ(selection_.selectedPaths, Names{"C:\\sub\\" + name});
    EXPECT_EQ(location->text(), QString("C:\\sub"));
  }
  location->setFocus();
  location->setText("nonsense");
  QTest::keyClick(location, Qt::Key_Escape);
  EXPECT_EQ(location->text(), QString("C:\\sub"));
  tree()->setFocus();
  for (QWidget* const from : {static_cast<QWidget*>(tree()), static_cast<QWidget*>(location)}) {
    location->deselect();
    QTest::keyClick(from, Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(location->hasFocus());
    EXPECT_EQ(location->selectedText(), location->text());
  }
  QSignalSpy listed(frame_, &browser::frameMain::folderChanged);
  for (int times = 0; times < 2; ++times) frame_->openFolder("C:\\zeta");
  EXPECT_EQ(listed.count(), 2) << "the same folder is listed again";
  frame_->openFolder("C:\\no such");
  EXPECT_EQ(frame_->dir1Path(), "C:\\");
}

TEST_F(Browser, ARowTellsWhatHasNoColumn) {
  for (const char* name : {"run", "plain"}) write(name, "#!/bin/sh\n");
  chmod(host("run").c_str(), 0755);
  fs::create_symlink("b.txt", host("to b"));
  frame_->refreshKeepList();
  const auto index = [this](const char* name) {
    return tree()->model()->match(tree()->model()->index(0, 0), Qt::DisplayRole, name, 1).value(0);
  };
  const std::string numbers = "Owner: " + std::to_string(getuid()) + ", group: " + std::to_string(getgid());
  for (const auto& [name, details] : {std::pair("b.txt", "Size: 5 bytes\n" + numbers),
                                      {"run", "Size: 10 bytes\n" + numbers + "\nExecutable"},
                                      {"to b", "Size: 5 bytes\n" + numbers + "\nLink to: b.txt"},
                                      {"sub", numbers}}) {
    EXPECT_EQ(index(name).data(Qt::AccessibleDescriptionRole).toString().toStdString(), details);
    EXPECT_TRUE(index(name).data(Qt::ToolTipRole).toString().contains(name));
  }
  const auto picture = [&](const char* name) {
    return index(name).data(Qt::DecorationRole).value<QIcon>().pixmap(16, 16).toImage();
  };
  EXPECT_NE(picture("to b"), picture("run"));
  EXPECT_NE(picture("run"), picture("plain"));
  EXPECT_EQ(picture("plain"),
            platform::desktop::imageIcon(runtime::getImageIndex("")).pixmap(16, 16).toImage());
}

TEST_F(Browser, OneSelectionInAllViews) {
  click("b.txt");
  auto* icons = child<QListView>("DirPaneIcons");
  for (const int mode : {0, 2}) {
    frame_->setViewMode(mode);
    frame_->refreshKeepList();
    EXPECT_TRUE(icons->isVisible());
    EXPECT_EQ(selection_.selectedPaths, Names{"C:\\b.txt"});
    EXPECT_EQ(icons->viewMode(), mode == 0 ? QListView::IconMode : QListView::ListMode);
  }
  leftClick(icons->viewport(), placeIn(*icons, "sub"));
  QTest::keyClick(icons, Qt::Key_Return);
  EXPECT_EQ(frame_->dir1Path(), "C:\\sub");
}

TEST_F(Browser, NothingActsDuringAListing) {
  QSignalSpy packs(frame_, &browser::frameMain::createTar);
  QSignalSpy extracts(frame_, &browser::frameMain::extractTar);
  click("a.tgz");
  click("b.txt", Qt::ControlModifier);
  bool listed = false;
  duringListing([&] {
    listed = true;
    EXPECT_FALSE(tree()->isEnabled());
    EXPECT_NE(QApplication::overrideCursor(), nullptr);
    for (const char* button : {"cmdTar", "cmdExtract", "checkAll"}) {
      press(button);
      tests::press(*frame_, button);  // as assistive tools do, past every filter
    }
    clickColumn(1);
    EXPECT_FALSE(tree()->selectionModel()->hasSelection());
  });
  clickFolder("sub");
  ASSERT_TRUE(listed);
  EXPECT_EQ(selection_.selectedCount(), 0U);
  EXPECT_EQ(summary(), "C:\\sub\\*");
  EXPECT_EQ(packs.count() + extracts.count(), 0);
  EXPECT_EQ(caption(1), "Filename >");
  EXPECT_TRUE(tree()->isEnabled() && tree()->hasFocus());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Browser, WhatAsksForAListingDuringOneIsDoneOnceAfterIt) {
  const auto refresh = [&] { press("cmdRefreshFiles"); };
  const std::tuple<const char*, std::function<void()>, const char*> cases[] = {
      {"Refresh", [&] { refresh(), refresh(), refresh(); }, "C:\\sub"},
      {"a box", [&] { press("optShowHidden"); }, "C:\\sub"},
      {"the filter", [&] { chooseFilter(0); }, "C:\\sub"},
      {"Backspace", [&] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace); }, "C:\\"},
      {"the button", [&] { press("cmdDirPaneUp"), refresh(); }, "C:\\"},
      {"the folder list", [&] { clickFolder("inner"); }, "C:\\sub\\inner"},
      {"the later of two", [&] { clickFolder("inner"), type("C:\\zeta"); }, "C:\\zeta"},
      {"the drive list", [&] { child<platform::desktop::DriveList>("Drive1")->setDrive("Z:"); }, "Z:\\"}};
  for (const auto& [what, act, folder] : cases) {
    frame_->openFolder("C:\\sub");
    frame_->focusDirPane();
    int listings = 0;
    const auto counted = QObject::connect(tree()->model(), &QAbstractItemModel::modelReset, frame_,
                                          [&listings] { ++listings; });
    duringListing([&, act = act, what = what] {
      act();
      EXPECT_EQ(frame_->dir1Path(), "C:\\sub") << what;
      EXPECT_EQ(listings, 1) << what;
    });
    frame_->fillDirPane();
    QObject::disconnect(counted);
    EXPECT_EQ(frame_->dir1Path(), folder) << what;
    EXPECT_EQ(listings, 2) << what;
  }
}

TEST_F(Browser, DuringAnotherJobThePaneTellsOnlyOfFoldersToOpen) {
  click("b.txt");
  const QPoint sub = place("sub");
  {
    const platform::Busy::Scope job(busy_);
    click("a.tgz");
    key(Qt::Key_Down);
    QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, sub);
    EXPECT_EQ(selection_.selectedPaths, Names{"C:\\b.txt"});
    EXPECT_EQ(frame_->dir1Path(), "C:\\");
    frame_->refreshKeepList();  // a step of the job
    write("new");
    frame_->refreshKeepList();
    EXPECT_EQ(shown().size(), 6U);
  }
  EXPECT_EQ(frame_->dir1Path(), "C:\\sub");
}

TEST_F(Browser, WhileLoadingAFolderIsListedOnceAndInTwoSteps) {
  int listings = 0;
  QObject::connect(tree()->model(), &QAbstractItemModel::modelReset, frame_, [&] {
    if (tree()->model()->rowCount() > 0) ++listings;
  });
  frame_->setLoading(true);
  frame_->openFolder("C:\\sub");
  EXPECT_TRUE(shown().empty());
  frame_->listRows();
  EXPECT_EQ(shown(), (Names{"inner", "one"}));
  EXPECT_EQ(shown(1), Names(2));
  EXPECT_TRUE(frame_->selectRow("one"));
  for (int times = 0; times < 2; ++times) frame_->readModes();
  frame_->setLoading(false);
  frame_->getDirPaneSelected();
  EXPECT_EQ(selection_.selectedPaths, Names{"C:\\sub\\one"});
  EXPECT_EQ(shown(1), (Names{"drwxr-xr-x", "-rw-r--r--"}));
  EXPECT_EQ(listings, 1);
  window_.hide();
  frame_->openFolder("C:\\zeta");
  window_.show();
  key(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(frame_->dir1Path(), "C:\\") << "what was left unseen is no way back";
}

TEST_F(Browser, WhatIsStoppedOrVanishesHarmsNothing) {
  Names before = shown();
  duringListing([this] { busy_.requestStop(); });
  press("cmdRefreshFiles");
  EXPECT_EQ(shown(), before);
  EXPECT_EQ(shown(1), Names(5));
  EXPECT_EQ(log_.all, " Stopped: listing C:\\\n");
  EXPECT_TRUE(tree()->isEnabled());
  frame_->openFolder("C:\\sub");
  whenEventsRun_ = [&] { fs::remove_all(host("sub")); };
  frame_->refreshKeepList();
  frame_->refreshKeepList();
  whenEventsRun_ = {};
  EXPECT_EQ(frame_->dir1Path(), "C:\\") << "a folder that vanished leads to the nearest that is there";
  EXPECT_EQ(shown().front(), "zeta");
  before = shown();
  fs::rename(host(""), root_ + "/away");
  frame_->refreshKeepList();
  EXPECT_EQ(shown(), before) << "a drive that is not ready changes nothing";
  fs::rename(root_ + "/away", host(""));
}

TEST_F(Browser, FollowsWhatOthersWrite) {
  struct Held : platform::Busy::Watcher {
    void began() override { ++times; }
    int times = 0;
  } held;
  const auto sees = [this](const Names& names) {
    return QTest::qWaitFor([&] { return shown() == names; }, 4000);
  };
  click("b.txt");
  busy_.watch(held);
  write("bb.txt");
  fs::remove_all(host("sub"));
  EXPECT_TRUE(sees({"zeta", "a.tgz", "b.txt", "bb.txt", "C.c"}));
  EXPECT_EQ(shown(1)[3], "-rw-r--r--");
  EXPECT_EQ(summary(), "1 items (1 files, 0 folders)");
  EXPECT_EQ(tree()->currentIndex().data().toString(), "b.txt");
  EXPECT_EQ(folders()->model()->rowCount(), 2);
  write("C.c", std::string(5000, 'x'));  // in place
  chmod(host("a.tgz").c_str(), 0600);
  EXPECT_TRUE(QTest::qWaitFor([&] { return shown(2)[4] == "5 KB " && shown(1)[1] == "-rw-------"; }, 4000));
  {
    QMenu menu;
    menu.popup(QPoint());
    fs::remove(host("b.txt"));
    EXPECT_FALSE(QTest::qWaitFor([&] { return shown().size() == 4; }, 1200)) << "under a menu";
  }
  EXPECT_TRUE(sees({"zeta", "a.tgz", "bb.txt", "C.c"}));
  EXPECT_EQ(tree()->currentIndex().data().toString(), "bb.txt") << "its neighbour";
  EXPECT_EQ(summary(), "0 items (0 files, 0 folders)");
  busy_.unwatch(held);
  EXPECT_EQ(held.times, 0) << "nobody waits for it";
  fs::create_directories(host("zeta/below"));
  frame_->openFolder("C:\\zeta\\below");
  fs::rename(host("zeta"), host("eta"));
  EXPECT_TRUE(sees({"eta", "a.tgz", "bb.txt", "C.c"}));
  frame_->openFolder("C:\\eta\\below");
  const platform::Descriptor stands(open(host("eta/below").c_str(), O_RDONLY | O_CLOEXEC));
  fs::remove(host("eta/below"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return frame_->dir1Path() == "C:\\eta"; }, 4000))
      << "also while another program stands in it";
}

TEST_F(Browser, AFolderThatIsClosedAndOpenedAgainIsFollowed) {
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  const uid_t me = geteuid();
  const auto waits = [me](const std::function<bool()>& isSo) {
    if (me == 0 && seteuid(65534) != 0) return false;  // whom modes can stop
    const bool came = QTest::qWaitFor(isSo, 4000);
    return seteuid(me) == 0 && came;
  };
  auto* const pane = child<browser::PaneViews>("DirPaneViews");
  chmod(root_.c_str(), 0755);
  frame_->openFolder("C:\\sub");
  chmod(host("sub").c_str(), 0);
  EXPECT_TRUE(waits([&] { return pane->notice() == "This folder cannot be read: Permission denied"; }));
  chmod(host("sub").c_str(), 0755);
  EXPECT_TRUE(waits([&] { return shown() == Names{"inner", "one"} && pane->notice().isEmpty(); }));
}

TEST_F(Browser, AFolderThatCannotBeOpenedIsTold) {
  fs::remove_all(host("zeta"));
  fs::remove_all(host("sub"));
  clickFolder("zeta");
  EXPECT_EQ(log_.all, " Unable to open folder: C:\\zeta (No such file or directory)\n");
  doubleClick("sub");
  EXPECT_NE(log_.all.find("open folder: C:\\sub (No such"), std::string::npos);
  log_.all.clear();
  QTest::keyClick(folders(), Qt::Key_Backspace);
  EXPECT_EQ(log_.all, "") << "there is nothing above a drive";
  fs::create_directories(host("up/inner"));
  frame_->openFolder("C:\\up\\inner");
  fs::remove_all(host("up"));
  press("cmdDirPaneUp");
  EXPECT_EQ(log_.all, " Unable to open folder: C:\\up (No such file or directory)\n");
  frame_->openFolder("C:\\");
  write("new/x");
  whenEventsRun_ = [this] { fs::remove_all(host("new")); };
  frame_->openFolder("C:\\new");
  EXPECT_NE(log_.all.find("open folder: C:\\new (No such"), std::string::npos);
  EXPECT_EQ(frame_->dir1Path(), "C:\\");
}

TEST_F(Browser, ScatteredChangesKeepSelectionAndPlace) {
  for (const std::string& name : numbered("f", 400)) write(name);
  frame_->refreshKeepList();
  click("b.txt");
  tree()->verticalScrollBar()->setValue(150);
  const QVariant atTop = tree()->indexAt({1, 1}).data();
  for (int i = 1; i <= 400; i += 2) fs::remove(host(shown()[static_cast<std::size_t>(i + 4)]));
  const auto rows = [this] { return tree()->model()->rowCount(); };
  EXPECT_TRUE(QTest::qWaitFor([&] { return rows() == 205; }, 4000)) << rows();
  EXPECT_EQ(summary(), "1 items (1 files, 0 folders)");
  EXPECT_EQ(tree()->indexAt({1, 1}).data(), atTop);
  tree()->header()->resizeSection(1, 2000);
  QApplication::processEvents();
  tree()->horizontalScrollBar()->setValue(100);
  ASSERT_EQ(tree()->horizontalScrollBar()->value(), 100);
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  frame_->refreshKeepList();
  EXPECT_EQ(tree()->horizontalScrollBar()->value(), 100);
  EXPECT_EQ(window_.focusWidget(), tree()) << "also while the user is elsewhere";
  const auto keepsItsTop = [&](const QAbstractItemView& view, std::size_t first) {
    const QPersistentModelIndex top = view.indexAt({1, 1});
    const QRect place = view.visualRect(top);
    const int before = rows();
    const Names names = shown();
    for (std::size_t row = first; row < first + 30; ++row) fs::remove(host(names[row]));
    const bool came = QTest::qWaitFor([&] { return rows() == before - 30; }, 4000);
    return came && view.visualRect(top).left() == place.left() &&
           (&view != tree() || view.visualRect(top).top() == place.top());
  };
  tree()->setCurrentIndex(tree()->model()->index(110, 0));
  tree()->verticalScrollBar()->setValue(0);
  EXPECT_TRUE(keepsItsTop(*tree(), 100)) << "also when the current row vanishes out of sight";
  tree()->verticalScrollBar()->setValue(100);
  EXPECT_TRUE(keepsItsTop(*tree(), 2));
  frame_->setViewMode(2);
  frame_->refreshKeepList();
  auto* const list = child<QListView>("DirPaneIcons");
  list->horizontalScrollBar()->setValue(list->horizontalScrollBar()->maximum() / 2);
  ASSERT_GT(list->horizontalScrollBar()->value(), 0);
  EXPECT_TRUE(keepsItsTop(*list, 2));
  frame_->setViewMode(3);
  frame_->refreshKeepList();
  for (const std::string& name : numbered("sub/f", 400)) write(name);
  frame_->openFolder("C:\\sub");
  EXPECT_EQ(tree()->verticalScrollBar()->value(), 0) << "another folder is shown from its top";
}

TEST_F(Browser, ANameToldOfTwiceIsRemovedOnce) {
  browser::DirPaneModel model;
  const auto rows = [](const Names& names) {
    std::vector<browser::PaneRow> made;
    for (const std::string& name : names) {
      made.emplace_back().name = name;
      made.back().place = made.size() - 1;
    }
    return made;
  };
  model.setRows(rows({"a", "b", "a"}));
  std::vector<browser::PaneRow> twice = rows({"b", "b"});
  EXPECT_FALSE(model.updateRows(twice));
  std::vector<browser::PaneRow> once = rows({"a", "b"});
  EXPECT_TRUE(model.updateRows(once));
  EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(Browser, HostileNamesStayThemselves) {
  for (const char* name : {"new\nline", "bad\xFF.txt", "q\"uo\\te", "-rf", "<b>x"}) write(name);
  ASSERT_EQ(mkfifo(host("fifo").c_str(), 0600), 0);
  press("cmdRefreshFiles");
  press("checkAll");
  const Names paths = selection_.selectedPaths;
  EXPECT_EQ(paths.size(), 11U);
  EXPECT_EQ(std::count(paths.begin(), paths.end(), "C:\\" + platform::holdName("bad\xFF.txt")), 1);
  for (const std::string& mode : shown(1)) EXPECT_EQ(mode.size(), 10U);
  const Names names = shown();
  for (const char* text : {"new\\x0Aline", "bad\\xFF.txt", "q\"uo\\te", "<b>x"})
    EXPECT_EQ(std::count(names.begin(), names.end(), text), 1) << text;
  press("cmdRefreshFiles");
  EXPECT_EQ(selection_.selectedPaths, paths);
}

TEST_F(Browser, TheSizeOfTheSelectionIsCountedWhenAskedFor) {
  auto* const label = child<QLabel>("lblSelectionText");
  const auto ask = [label] {
    QHelpEvent asked(QEvent::ToolTip, {}, {});
    QApplication::sendEvent(label, &asked);
  };
  for (int i = 0; i < 3000; ++i) fs::create_directory(host("zeta/" + std::to_string(i)));
  for (const auto& [selected, size] : {std::pair("b.txt", "5 bytes"), {"sub", "5 bytes"}, {"", "25 bytes"}}) {
    click("zeta");
    ask();  // the next selection comes before that is counted
    if (*selected != 0)
      click(selected);
    else
      frame_->openFolder("C:\\");
    EXPECT_EQ(label->toolTip(), "");
    ask();
    EXPECT_TRUE(QTest::qWaitFor([&] { return label->toolTip() == size; }, 4000)) << selected;
  }
}

TEST_F(Browser, FileListMirrorsTheFolder) {
  auto* files = child<platform::desktop::FileList>("File1");
  files->show();
  files->selectAll();
  emit files->clicked(files->model()->index(0, 0));
  EXPECT_EQ(summary(), "4 items (4 files, 0 folders)");
  QSignalSpy archives(frame_, &browser::frameMain::archiveOpened);
  files->setCurrentIndex(files->model()->match(files->model()->index(0, 0), 0, "a.tgz").front());
  emit files->doubleClicked(files->currentIndex());
  EXPECT_EQ(archives.count(), 1);
}

TEST_F(Browser, EveryControlHasANameAndItsWholeCaption) {
  press("optShowHidden");
  tests::checkTexts(*frame_);
  for (QAbstractButton* button : frame_->findChildren<QAbstractButton*>())
    if (!button->text().isEmpty()) {
      EXPECT_GE(button->width(), button->minimumSizeHint().width()) << button->text().toStdString();
    }
}

TEST_F(Browser, SplitterMovesByMouseAndKeys) {
  QObject::connect(frame_, &browser::frameMain::dividerDragged, &window_, [this](int x) {
    browser::dragDivider(layout_, x, scale_);
    browser::applyLayout(area_, layout_, scale_);
  });
  auto* divider = child<QWidget>("divider");
  const int before = divider->x();
  QTest::mouseMove(divider, QPoint(90, 5));
  EXPECT_EQ(divider->x(), before);
  QTest::mousePress(divider, Qt::LeftButton, {}, QPoint(2, 5));
  QTest::mouseMove(divider, QPoint(divider->width() / 2 + 80, 5));
  QTest::mouseRelease(divider, Qt::LeftButton);
  EXPECT_NEAR(divider->x(), before + 80, 1);
  QTest::keyClick(divider, Qt::Key_Left);
  EXPECT_LT(divider->x(), before + 80);
  EXPECT_EQ(folders()->geometry().right() + 1, divider->x());
}

}  // namespace
