#include "platform/desktop/ColumnWidths.h"
#include "platform/desktop/DriveList.h"
#include "platform/desktop/FileList.h"
#include "platform/desktop/FolderCompleter.h"
#include "platform/desktop/FolderList.h"
#include "platform/desktop/ImageList.h"
#include "platform/desktop/ProgramStyle.h"
#include "platform/desktop/ReadableColour.h"
#include "platform/desktop/ScrollList.h"
#include "tests/forms/Forms.h"

namespace {

using namespace platform::desktop;

TEST(ImageList, TwentyOnePicturesAreDrawn) {
  QList<QImage> seen;
  for (int index = 1; index <= 21; ++index) {
    const QImage picture = imageIcon(index).pixmap(16).toImage();
    ASSERT_FALSE(picture.isNull()) << index << ": the SVG plugin is missing, or the file";
    EXPECT_FALSE(seen.contains(picture)) << index;
    seen.append(picture);
  }
  EXPECT_TRUE(imageIcon(0).isNull() && imageIcon(22).isNull());
  EXPECT_FALSE(programIcon().pixmap(16).isNull());
}

/// One row, selected and with a colour of its own.
TEST(ProgramStyle, TheFocusShowsAndASelectedRowKeepsAReadableColour) {
  QWidget window;
  QLineEdit box(&window);
  QListWidget list(&window);
  QPushButton button(&window);
  auto* const style = new ProgramStyle;
  style->setParent(&window);
  for (QWidget* const widget : std::initializer_list<QWidget*>{&window, &list, &button})
    widget->setStyle(style);
  list.addItem("\u2588\u2588\u2588\u2588");
  list.item(0)->setForeground(Qt::red);
  list.setCurrentRow(0);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  std::vector<QColor> selection;
  for (QWidget* const focused : std::initializer_list<QWidget*>{&box, &list}) {
    focused->setFocus();
    const QImage picture = list.grab().toImage();
    EXPECT_EQ(picture.pixelColor(0, 30) == list.palette().color(QPalette::Highlight), focused == &list);
    const QPoint row = list.viewport()->pos() + list.visualItemRect(list.item(0)).center();
    selection.push_back(picture.pixelColor(list.width() - 8, row.y()));
    EXPECT_GE(contrast(picture.pixelColor(list.viewport()->x() + 12, row.y()), selection.back()), 4.4);
  }
  const QImage unfocused = button.grab().toImage();
  button.setFocus();
  EXPECT_NE(button.grab().toImage(), unfocused) << "before any Tab";
  QStyleOptionFocusRect caption;
  caption.rect = QRect(0, 0, 9, 9);
  QPixmap drawn(9, 9);
  drawn.fill(Qt::white);
  QPainter painter(&drawn);
  style->drawPrimitive(QStyle::PE_FrameFocusRect, &caption, &painter, &button);
  EXPECT_EQ(drawn.toImage().pixelColor(8, 8), caption.palette.color(QPalette::Highlight));
  const QColor base = list.palette().color(QPalette::Base);
  EXPECT_LT(contrast(selection[0], base) + 1, contrast(selection[1], base));
}

TEST(ProgramStyle, TheCurrentRowOfSeveralSelectedIsKnown) {
  QTreeWidget tree;
  tree.setStyle(new ProgramStyle);
  tree.style()->setParent(&tree);
  tree.setAllColumnsShowFocus(true);
  tree.addTopLevelItem(new QTreeWidgetItem({"row"}));
  tree.topLevelItem(0)->setSelected(true);
  tree.show();
  QApplication::setActiveWindow(&tree);
  tree.setFocus();
  tree.selectionModel()->clearCurrentIndex();
  const auto edge = [&tree] {
    const QRect row = tree.visualItemRect(tree.topLevelItem(0)).translated(tree.viewport()->pos());
    return tree.grab().toImage().pixelColor(row.center().x(), row.bottom());
  };
  const QColor another = edge();
  tree.selectionModel()->setCurrentIndex(tree.model()->index(0, 0), QItemSelectionModel::NoUpdate);
  EXPECT_NE(edge(), another);
}

TEST(ProgramStyle, ASeparatorIsALineWhateverItsText) {
  ProgramStyle style;
  const auto drawn = [&style](const char* text) {
    QMenu menu;
    menu.setStyle(&style);
    menu.addAction("Content");
    QAction* const separator = menu.addAction(text);
    separator->setSeparator(true);
    menu.addAction("About");
    menu.ensurePolished();
    const QRect place = menu.actionGeometry(separator);
    return menu.grab(QRect(place.center().x(), place.y(), 1, place.height())).toImage();
  };
  const QImage line = drawn("-");
  EXPECT_EQ(line, drawn("+"));
  QImage plain = line;
  plain.fill(line.pixelColor(0, 0));
  EXPECT_NE(line, plain);
}

TEST(ColumnWidths, AreGivenBackUnlessTheyAreNonsense) {
  QTableWidget table(0, 4);
  QHeaderView& header = *table.horizontalHeader();
  header.setStretchLastSection(true);
  for (const char* text : {"40 50 60", "", "40 50 60 70", "0 50 60", "40 x 60", "40 50 99999"}) {
    setColumnWidths(header, text);
    EXPECT_EQ(columnWidths(header), "40 50 60") << text;
  }
}

TEST(ScrollList, EveryWayOfTurningIt) {
  ScrollList list;
  QSignalSpy changes(&list, &ScrollList::topChanged);
  list.setEntries({"usr1", "usr2", "usr3", "usr4", "root"});
  list.show();
  std::string tops;
  for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_End, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_R}) {
    QTest::keyClick(&list, key);
    tops += std::to_string(list.topIndex());
  }
  EXPECT_EQ(tops, "014304");
  tests::turnWheel(list.viewport(), -1);
  EXPECT_EQ(list.topIndex(), 3);
  tests::leftClick(list.verticalScrollBar(), {list.verticalScrollBar()->width() / 2, 2});
  EXPECT_EQ(list.topIndex(), 2);
  EXPECT_EQ(changes.size(), 7);
}

TEST(ScrollList, TypedLettersFindTheEntryAndAssistiveToolsReadIt) {
  ScrollList list;
  list.setEntries({"usr1", "usr2", "root"});
  for (const int next : {1, 0, 1}) {  // one letter again and again: round and round
    QTest::keyClicks(&list, "u");
    EXPECT_EQ(list.topIndex(), next);
  }
  QTest::qWait(QApplication::keyboardInputInterval() + 20);
  QTest::keyClicks(&list, "USR1");
  EXPECT_EQ(list.topIndex(), 0);
  list.setTopIndex(7);
  QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&list);
  EXPECT_EQ(access->text(QAccessible::Value), QString("root"));
  access->valueInterface()->setCurrentValue(1);
  EXPECT_EQ(list.topEntry(), QString("usr2"));
  list.setEntries({"KT500"});
  EXPECT_EQ(access->textInterface()->text(0, 9), QString("KT500"));
}

/// A disk with C:\a\b, C:\a\B2, C:\a\c (a link to a folder), C:\a\file, C:\Zoo and a folder of an odd name.
class Disk : public testing::Test {
 protected:
  Disk() {
    const QDir root(folder.path());
    for (const char* name : {"c/a/b", "c/a/B2", "c/Zoo", "c/a/x\\y", "d"}) root.mkpath(name);
    QFile::link(root.filePath("d"), root.filePath("c/a/c"));
    for (const char* name : {"c/a/file", "c/a/two:x"})
      EXPECT_TRUE(QFile(root.filePath(name)).open(QIODevice::WriteOnly));
  }
  std::string host(const char* name) const { return folder.filePath(name).toStdString(); }

  QTemporaryDir folder;
  platform::DriveTable drives{{{'C', host("c")}, {'D', host("d")}}};
  platform::Busy busy;
};

TEST_F(Disk, DriveListTellsOfEachChangeOnce) {
  DriveList list;
  QSignalSpy changes(&list, &DriveList::driveChanged);
  list.setDrives(drives);
  EXPECT_EQ(list.currentText(), QString("C: [c]"));
  EXPECT_EQ(list.itemText(2), QString("Z: [/]"));
  EXPECT_TRUE(list.setDrive("c:\\a"));
  EXPECT_FALSE(list.setDrive("E:\\"));
  EXPECT_FALSE(list.setDrive("\\\\server\\share"));
  EXPECT_EQ(changes.size(), 0);
  EXPECT_TRUE(list.setDrive("d:"));
  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_EQ(list.drive(), "Z:");
  EXPECT_EQ(changes.size(), 2);
  list.setAttribute(Qt::WA_UnderMouse);
  QHelpEvent tip(QEvent::ToolTip, {2, 2}, {2, 2});
  QApplication::sendEvent(&list, &tip);
  EXPECT_TRUE(QTest::qWaitFor([] { return QToolTip::text().contains(" free of "); }));
}

TEST_F(Disk, FoldersAreOfferedAsTheyAreTyped) {
  QDir(folder.path()).mkpath("c/a/.h");
  QLineEdit box;
  std::string base = "C:\\a";
  FolderCompleter completer(box, drives, [&base] { return base; });
  const auto offered = [&](const QString& typed) {
    box.clear();
    QTest::keyClicks(&box, typed);
    completer.setCompletionPrefix(typed);
    QStringList texts;
    for (int row = 0; completer.setCurrentRow(row); ++row) texts += completer.currentCompletion();
    return texts;
  };
  const QString host = folder.filePath("c/a/");
  const std::pair<QString, QStringList> cases[] = {
      {"C:\\z", {"C:\\Zoo"}},
      {"c:/a/B", {"c:/a/B2", "c:/a/b"}},
      {"x", {"x\uF05Cy"}},
      {host + "x", {host + "x\\y"}},
      {"C:\\a\\.", {"C:\\a\\.h"}},
      {"c:/a/", {"c:/a/B2", "c:/a/b", "c:/a/c", "c:/a/x\uF05Cy"}},
      {"Q:\\", {}}};
  for (const auto& [typed, folders] : cases) EXPECT_EQ(offered(typed), folders) << typed.toStdString();
  EXPECT_EQ(offered("b"), (QStringList{"B2", "b"}));
  base = "C:\\";
  EXPECT_EQ(offered("z"), QStringList{"Zoo"});
}

TEST_F(Disk, DriveListKeepsAVolumeThatHasGone) {
  platform::DriveTable home = platform::DriveTable::fromText("", host("c"));
  home.showVolumes({host("d")});
  DriveList list;
  list.setDrives(home);
  ASSERT_TRUE(list.setDrive("D:"));
  QSignalSpy changes(&list, &DriveList::driveChanged);
  home.showVolumes({});
  list.showPopup();
  list.hidePopup();
  EXPECT_EQ(list.drive(), "D:");
  EXPECT_EQ(changes.size(), 0);
  list.setDrive("C:");
  list.showPopup();
  list.hidePopup();
  EXPECT_FALSE(list.setDrive("D:"));
}

/// The list over C:\a, and what it has told of.
class Folders : public Disk {
 protected:
  Folders() {
    list.setDrives(drives, busy);
    list.resize(220, 300);
    list.show();
    EXPECT_TRUE(list.setPath("C:\\a"));
    changes.clear();
  }
  QStringList rows() const {
    QStringList texts;
    for (int row = 0; row < list.model()->rowCount(); ++row)
      texts += list.model()->index(row, 0).data().toString();
    return texts;
  }
  QPoint at(int row) const { return list.visualRect(list.model()->index(row, 0)).center(); }
  void click(int row) { tests::leftClick(list.viewport(), at(row)); }
  void doubleClick(int row) {
    const QPoint point = at(row);
    click(row);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, point);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, point);
  }

  FolderList list;
  QAbstractItemModelTester tester{list.model()};
  QSignalSpy changes{&list, &FolderList::changed};
  QSignalSpy openFolderClicks{&list, &FolderList::openFolderClicked};
};

TEST_F(Folders, PathAboveItsSubfolders) {
  EXPECT_EQ(rows(), QStringList({"C:\\", "a", "b", "B2", "c", "x\\y"}));
  EXPECT_EQ(list.highlighted(), "C:\\a");
  EXPECT_TRUE(list.setPath("c:/a\\\\.\\"));  // the same folder
  for (const char* none : {"C:\\none", "C:\\a\\file", "E:\\", "", "a", "\\\\server\\share"})
    EXPECT_FALSE(list.setPath(none)) << none;
  EXPECT_EQ(list.path(), "C:\\a");
  EXPECT_EQ(changes.size(), 0);
  EXPECT_TRUE(list.setPath("C:"));
  EXPECT_EQ(list.path(), "C:\\");
  EXPECT_EQ(changes.size(), 1);
}

TEST_F(Folders, AClickOpensTheSecondOfADoubleClickDoesNotAndTheRightButtonOnlyTells) {
  QSignalSpy rightClicks(&list, &FolderList::rightClicked);
  QTest::mouseClick(list.viewport(), Qt::RightButton, {}, at(2));
  EXPECT_EQ(list.highlighted(), "C:\\a");
  EXPECT_EQ(rightClicks.size(), 1);
  EXPECT_EQ(changes.size(), 0);
  click(5);
  EXPECT_EQ(list.path(), "C:\\a\\x\xEF\x81\x9Cy");
  click(1);
  EXPECT_EQ(list.path(), "C:\\a");
  doubleClick(0);
  EXPECT_EQ(list.path(), "C:\\");
  EXPECT_EQ(changes.size(), 3);
  EXPECT_EQ(openFolderClicks.size(), 0);
  doubleClick(0);
  EXPECT_EQ(openFolderClicks.size(), 2);
  EXPECT_EQ(changes.size(), 3);
}

TEST_F(Folders, TheWayToTheFolderAndItsSubfoldersShow) {
  for (int i = 0; i < 40; ++i) QDir(folder.path()).mkpath(QString("c/a/B2/%1").arg(i));
  EXPECT_TRUE(list.setPath("C:\\a\\B2"));
  EXPECT_EQ(list.verticalScrollBar()->value(), 0);
  QString deep = "/a/B2/7";
  for (int i = 1; i < 20; ++i) deep += QString("/%1").arg(i);
  QDir(folder.path()).mkpath("c" + deep + "/20");
  EXPECT_TRUE(list.setPath(("C:" + deep).toStdString()));
  EXPECT_TRUE(list.viewport()->rect().contains(at(22)));
  EXPECT_TRUE(list.viewport()->rect().contains(at(23)));
}

TEST_F(Folders, KeysMoveOpenAndGoUpAndTheRestIsTheWindows) {
  QWidget window;
  list.setParent(&window);
  window.show();
  list.show();
  list.setFocus();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  QSignalSpy selectAll(new QShortcut(QKeySequence("Ctrl+A"), &window), &QShortcut::activated);
  QTest::keyClick(&list, Qt::Key_B);
  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_EQ(list.highlighted(), "C:\\a\\B2");
  EXPECT_EQ(changes.size(), 0);
  QTest::keyClick(&list, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(selectAll.size(), 1);
  QTest::keyClick(&list, Qt::Key_Return);
  EXPECT_EQ(list.path(), "C:\\a\\B2");
  for (int times = 0; times < 3; ++times) QTest::keyClick(&list, Qt::Key_Backspace);
  EXPECT_EQ(list.path(), "C:\\");
  EXPECT_EQ(changes.size(), 3);
  list.setParent(nullptr);
}

TEST_F(Folders, RefreshKeepsPathAndHighlight) {
  list.setCurrentIndex(list.model()->index(3, 0));
  QDir(folder.path()).mkpath("c/a/A0");
  QDir(folder.path()).rmdir("c/a/b");
  list.refresh();
  EXPECT_EQ(rows(), QStringList({"C:\\", "a", "A0", "B2", "c", "x\\y"}));
  EXPECT_EQ(list.highlighted(), "C:\\a\\B2");
  QDir(folder.path()).rmdir("c/a/B2");
  list.refresh();
  EXPECT_EQ(list.currentIndex().row(), 1);
  QDir(folder.filePath("c/a")).removeRecursively();
  list.refresh();
  EXPECT_EQ(rows(), QStringList({"C:\\", "a"}));
  EXPECT_EQ(changes.size(), 0);
}

TEST_F(Folders, WhileAJobRunsTheLastFolderChosenIsRemembered) {
  const std::pair<std::function<void()>, const char*> choices[] = {
      {[&] { QTest::keyClick(&list, Qt::Key_Backspace); }, "C:\\a"},
      {[&] { click(1); }, "C:\\a"},
      {[&] { doubleClick(2); }, "C:\\Zoo"},
  };
  ASSERT_TRUE(list.setPath("C:\\a\\b"));
  for (const auto& [choose, opened] : choices) {
    const std::string before = list.path();
    {
      const platform::Busy::Scope running(busy);
      click(0);
      choose();
      QTest::keyClick(&list, Qt::Key_Down);
      EXPECT_EQ(list.highlighted(), before);
    }
    EXPECT_EQ(list.path(), opened);
    list.setPath("C:\\");
  }
}

TEST_F(Folders, HiddenOnesAreLeftOutWhereWantedAndNothingIsReadUnseen) {
  QDir(folder.path()).mkpath("c/a/.h");
  for (const bool shown : {false, true}) {
    list.setHiddenShown(shown);
    list.refresh();
    EXPECT_EQ(rows().contains(".h"), shown);
  }
  list.hide();
  EXPECT_TRUE(list.setPath("C:\\"));
  EXPECT_FALSE(list.setPath("C:\\none"));
  EXPECT_EQ(rows(), QStringList({"C:\\"}));
  list.show();
  EXPECT_EQ(rows(), QStringList({"C:\\", "a", "Zoo"}));
}

TEST_F(Disk, FileListHoldsFilesByExactNameOnceItShows) {
  FileList list;
  list.setDrives(drives);
  list.setPath("C:\\a");
  EXPECT_EQ(list.model()->rowCount(), 0);
  list.show();
  EXPECT_EQ(list.model()->rowCount(), 2);
  list.selectAll();
  EXPECT_EQ(list.selectedNames(), std::vector<std::string>({"file", "two\xEF\x80\xBAx"}));
  list.setPath("C:\\none");
  EXPECT_EQ(list.model()->rowCount(), 0);
}

}  // namespace
