#include "browser/ui/frmRightClick.h"
#include "tests/forms/MainWindow.h"

namespace {

namespace fs = std::filesystem;
using browser::DrawnMenu;
using tests::the;

/// The main window's pop-up menu, over a folder with two files and a folder.
class Menus : public tests::MainTest {
 protected:
  Menus() {
    load({"-d", "C:\\pkg"});
    window_.activateWindow();
  }

  QTreeView& pane() { return *find<QTreeView>("DirPane"); }
  QPoint placeOf(const char* name) {
    const auto found = pane().model()->match(pane().model()->index(0, 0), Qt::DisplayRole, QString(name), 1,
                                             Qt::MatchExactly);
    return found.empty() ? QPoint(20, pane().viewport()->height() - 5)
                         : pane().visualRect(found.front()).center();
  }
  /// By a right click on a row, or in empty space.
  DrawnMenu& openMenu(const char* name) {
    QTest::mouseClick(pane().viewport(), Qt::RightButton, {}, placeOf(name));
    settle();
    return menu("frmRightClick");
  }
  DrawnMenu& menu(const char* name) {
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (widget->objectName() == name && widget->isVisible()) return dynamic_cast<DrawnMenu&>(*widget);
    throw std::runtime_error(name);
  }
  bool open(const char* name) {
    QApplication::processEvents();
    for (const QWidget* widget : QApplication::topLevelWidgets())
      if (widget->objectName() == name && widget->isVisible()) return true;
    return false;
  }
  /// A desktop leaves the focus with the window below a menu.
  void settle() {
    window_.activateWindow();
    QApplication::processEvents();
  }
  /// The keys go where a person's would.
  void key(Qt::Key key) {
    QTest::keyClick(QApplication::activePopupWidget(), key);
    settle();
  }
  /// Keys in turn, and what is lit after each.
  std::string lit(std::initializer_list<Qt::Key> keys) {
    std::string indexes;
    for (const Qt::Key one : keys) {
      key(one);
      const auto* now = dynamic_cast<DrawnMenu*>(QApplication::activePopupWidget());
      indexes += now == nullptr ? "-" : std::to_string(now->menuIndex()) + " ";
    }
    return indexes;
  }
  static QPoint middleOf(DrawnMenu& menu, int entry) {
    const auto& label = the(menu, ("mnuRightClick_" + std::to_string(entry)).c_str());
    return label.mapToGlobal(label.rect().center());
  }
  /// The window that has the mouse gets it, wherever the pointer is.
  void moveTo(QPoint at) {
    QWidget* const popup = QApplication::activePopupWidget();
    QMouseEvent move(QEvent::MouseMove, popup->mapFromGlobal(at), at, Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(popup, &move);
    settle();
  }
  static void clickAt(QPoint at) {
    QWidget* const popup = QApplication::activePopupWidget();
    QTest::mouseClick(popup, Qt::LeftButton, {}, popup->mapFromGlobal(at));
  }
};

TEST_F(Menus, OpensAtThePointerWithItsEntries) {
  const QPoint at = pane().viewport()->mapToGlobal(placeOf("a.txt"));
  DrawnMenu& menu = openMenu("a.txt");
  EXPECT_EQ(menu.pos(), at);
  EXPECT_EQ(menu.menuIndex(), DrawnMenu::none);
  int least = 0;
  for (const char entry : std::string_view("12467305")) {
    const auto& label = the<QAbstractButton>(menu, (std::string("mnuRightClick_") + entry).c_str());
    EXPECT_GE(label.y(), least) << entry;
    least = label.y() + label.fontMetrics().height();
    EXPECT_GE(label.width(), label.fontMetrics().horizontalAdvance(label.text()));
    EXPECT_GE(label.height(), label.fontMetrics().height());
    EXPECT_TRUE(label.isEnabled());
    EXPECT_EQ(label.accessibleName(), label.text().trimmed());
  }
  EXPECT_EQ(selected(), std::vector<std::string>{"C:\\pkg\\a.txt"});
  clickAt(middleOf(menu, 5));
  EXPECT_FALSE(open("frmRightClick"));
}

TEST_F(Menus, StaysOnTheScreen) {
  const QRect screen = window_.screen()->availableGeometry();
  emit window_.browsing().menuWanted(screen.bottomRight());
  DrawnMenu& corner = menu("frmRightClick");
  EXPECT_TRUE(screen.contains(corner.geometry()));
  moveTo(middleOf(corner, 7));
  EXPECT_TRUE(screen.contains(menu("frmView").geometry()));
  EXPECT_FALSE(menu("frmView").geometry().intersects(corner.geometry()));
  emit window_.browsing().menuWanted(screen.topLeft());
  EXPECT_EQ(menu("frmRightClick").pos(), screen.topLeft()) << "one is open at a time";
  EXPECT_FALSE(open("frmView"));
}

TEST_F(Menus, KeysGoInScreenOrderAndLeaveOutWhatCannotBeUsed) {
  constexpr Qt::Key up = Qt::Key_Up, down = Qt::Key_Down;
  openMenu("a.txt");
  EXPECT_EQ(lit({down, down, down, down, down, down, down, down, up, up}), "1 2 4 6 7 3 0 1 0 3 ");
  key(Qt::Key_Escape);
  EXPECT_FALSE(open("frmRightClick"));
  DrawnMenu& menu = openMenu("sub");
  EXPECT_FALSE(the(menu, "mnuRightClick_1").isEnabled() || the(menu, "mnuRightClick_2").isEnabled());
  EXPECT_EQ(lit({up, up, down, down}), "4 0 4 6 ");
  clickAt(middleOf(menu, 1));
  EXPECT_TRUE(open("frmRightClick") && person_.told.empty());
}

TEST_F(Menus, CascadesFollowMouseAndKeys) {
  constexpr Qt::Key up = Qt::Key_Up, down = Qt::Key_Down, right = Qt::Key_Right;
  DrawnMenu& menu = openMenu("a.txt");
  moveTo(middleOf(menu, 7));
  DrawnMenu& view = this->menu("frmView");
  EXPECT_EQ(view.x(), menu.x() + menu.width());
  EXPECT_EQ(middleOf(view, 0).y(), middleOf(menu, 7).y());
  moveTo(middleOf(view, 1));
  EXPECT_EQ(view.menuIndex(), 1);
  EXPECT_EQ(menu.menuIndex(), 7);
  moveTo(middleOf(menu, 3));
  EXPECT_TRUE(open("frmShowFiles") && !open("frmView"));
  moveTo(middleOf(menu, 0));
  EXPECT_FALSE(open("frmShowFiles"));
  EXPECT_EQ(lit({up, right, right, down, down, Qt::Key_Left}), "3 100 0 1 0 3 ");
  EXPECT_EQ(lit({right, Qt::Key_Escape}), "100 3 ");
  EXPECT_EQ(lit({right, up, Qt::Key_Left, up, right}), "100 0 3 7 100 ");
  EXPECT_TRUE(open("frmView"));
  clickAt(window_.mapToGlobal(QPoint(5, window_.height() - 5)));
  EXPECT_FALSE(open("frmView") || open("frmRightClick"));
}

TEST_F(Menus, ClosesWhenTheFocusGoesElsewhere) {
  moveTo(middleOf(openMenu("a.txt"), 7));
  QWidget other;
  other.show();
  other.activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_FALSE(open("frmView") || open("frmRightClick"));
}

TEST_F(Menus, ViewAndShowFilesChangeThePane) {
  for (const auto& [entry, before, pane] :
       {std::tuple(0, "001", "DirPaneIcons"), {1, "100", "DirPaneIcons"}, {2, "010", "DirPane"}}) {
    emit window_.browsing().menuWanted({});
    moveTo(middleOf(menu("frmRightClick"), 7));
    DrawnMenu& view = menu("frmView");
    std::string checks;
    for (const char* name : {"imageCheck_0", "imageCheck_1", "imageCheck_2"})
      checks += the(view, name).isVisible() ? '1' : '0';
    EXPECT_EQ(checks, before);
    clickAt(middleOf(view, entry));
    EXPECT_FALSE(open("frmView") || open("frmRightClick"));
    EXPECT_TRUE(find(pane)->isVisible());
  }
  for (const std::size_t rows : {4U, 3U}) {
    openMenu("sub");
    moveTo(middleOf(menu("frmRightClick"), 3));
    EXPECT_EQ(the(menu("frmShowFiles"), "imageCheck_0").isVisible(), rows == 3U);
    EXPECT_FALSE(the(menu("frmShowFiles"), "imageCheck_1").isVisible());
    EXPECT_EQ(lit({Qt::Key_Down, Qt::Key_Return}), "0 -");
    EXPECT_EQ(window_.paneItems().size(), rows) << "the hidden one comes and goes";
  }
  openMenu("sub");
  moveTo(middleOf(menu("frmRightClick"), 3));
  clickAt(middleOf(menu("frmShowFiles"), 1));
  EXPECT_TRUE(find<QCheckBox>("optShowSystem")->isChecked());
}

TEST_F(Menus, RefreshListsAndDownloadsAskForOneFile) {
  openMenu("a.txt");
  write("pkg/new");
  clickAt(middleOf(menu("frmRightClick"), 4));
  EXPECT_EQ(window_.paneItems().size(), 4U);
  for (const int entry : {1, 2}) {
    DrawnMenu& menu = openMenu("a.txt");
    window_.selectAllRows();
    clickAt(middleOf(menu, entry));
    pane().clearSelection();
    openMenu("a.txt");
    pane().clearSelection();
    clickAt(middleOf(this->menu("frmRightClick"), entry));
  }
  const std::string many =
      "Can't Download|Error: Too many files selected.\rPlease select only one file to download.";
  const std::string none =
      "Can't Download|Error: No files selected.\rPlease select a file to download first.";
  EXPECT_EQ(person_.told, (std::vector<std::string>{many, none, many, none}));
  openMenu("a.txt");
  std::string opened;
  tests::onNextModal<QDialog>([&opened](QDialog& form) {
    opened = form.objectName().toStdString() + " " + the<QLineEdit>(form, "txtfile").text().toStdString();
    form.reject();
  });
  clickAt(middleOf(menu("frmRightClick"), 2));
  EXPECT_EQ(opened, "frmNetloader C:\\pkg\\a.txt");
}

TEST_F(Menus, AssistiveToolsReachAndPressTheEntries) {
  const auto does = [](DrawnMenu& menu, const char* name, const QString& what) {
    QAccessible::queryAccessibleInterface(&the(menu, name))->actionInterface()->doAction(what);
  };
  DrawnMenu& menu = openMenu("sub");
  does(menu, "mnuRightClick_7", QAccessibleActionInterface::setFocusAction());
  EXPECT_EQ(menu.menuIndex(), 7);
  does(this->menu("frmView"), "mnuRightClick_1", QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(QTest::qWaitFor([this] { return find("DirPaneIcons")->isVisible(); }));
  EXPECT_FALSE(open("frmRightClick"));
}

TEST_F(Menus, PropertiesAreOfWhatIsSelected) {
  const auto shown = [this](const std::function<void()>& select) {
    select();
    std::string texts;
    tests::onNextModal<QDialog>([&texts](QDialog& form) {
      texts = form.windowTitle().toStdString();
      for (const char* name : {"lblInfo", "lblLocation", "lblPermissions"})
        texts.append(1, '|').append(the<QLabel>(form, name).text().toStdString());
      form.reject();
    });
    emit window_.browsing().menuWanted({});
    clickAt(middleOf(menu("frmRightClick"), 0));
    return texts;
  };
  EXPECT_EQ(shown([this] { pane().clearSelection(); }), "pkg Properties|2 files, 1 folders|C:\\|");
  EXPECT_EQ(shown([this] { window_.browsing().selectRow("b c.txt"); }),
            "b c.txt Properties||C:\\pkg\\|-rw-r--r--");
  EXPECT_EQ(shown([this] { window_.selectAllRows(); }), "Properties|2 files, 1 folders|C:\\pkg\\|");
}

TEST_F(Menus, TheFoldersFileManagerGetsItsPathWhole) {
  tool("xdg-open", keep("%s \"$*\""));
  environment_.set("PATH", drives_.toWindows(root_ + "/prog/bin"));
  write("pkg/my sub/x");
  window_.browsing().openFolder("C:\\pkg\\my sub");
  emit window_.browsing().menuWanted({});
  clickAt(middleOf(menu("frmRightClick"), 6));
  EXPECT_EQ(kept(), host("pkg/my sub"));
  fs::remove(root_ + "/prog/bin/xdg-open");
  emit window_.browsing().menuWanted({});
  clickAt(middleOf(menu("frmRightClick"), 6));
  EXPECT_TRUE(testworld::has(logText(), " Unable to open: C:\\pkg\\my sub ("));
}

TEST_F(Menus, TheMenuKeyOpensItAtTheCurrentRow) {
  QTest::mouseClick(pane().viewport(), Qt::LeftButton, {}, placeOf("b c.txt"));
  QContextMenuEvent press(QContextMenuEvent::Keyboard, {}, {});
  QApplication::sendEvent(pane().viewport(), &press);
  const QPoint corner = pane().viewport()->mapFromGlobal(menu("frmRightClick").pos());
  const QRect row = pane().visualRect(pane().currentIndex());
  EXPECT_TRUE(row.adjusted(0, 0, 0, 3).contains(corner)) << corner.y();
  const platform::Busy::Scope job(busy_);
  busy_.becomeSlow();
  EXPECT_EQ(lit({Qt::Key_Down, Qt::Key_Right, Qt::Key_Down}), "7 100 100 ")
      << "none of the views can be used";
  menu("frmRightClick").closeAll();
  QApplication::sendEvent(pane().viewport(), &press);
  QTest::mouseClick(pane().viewport(), Qt::RightButton, {}, placeOf("a.txt"));
  EXPECT_FALSE(open("frmRightClick")) << "no menu while a job runs";
}

}  // namespace
