#include "perms/ui/frmPermissions.h"
#include "perms/ui/frmPreview.h"
#include "platform/desktop/PathLabel.h"
#include "platform/desktop/ReadableColour.h"
#include "tests/OnDisk.h"
#include "tests/forms/Forms.h"

namespace {

using Texts = std::vector<std::string>;
namespace fs = std::filesystem;

class PermissionsFormTest : public testworld::World {
 protected:
  PermissionsFormTest() {
    findTools();
    person_.onEvents = [] { QApplication::processEvents(); };
    for (const auto& [name, mode] : {std::pair("a", 0755), {"b", 0755}, {"c", 0750}, {"d/e.sh", 0600}}) {
      write(std::string("pkg/") + name);
      chmod(host(std::string("pkg/") + name).c_str(), static_cast<mode_t>(mode));
    }
  }
  void open(const Texts& names) {
    perms::PermissionItems items{{}, true, "C:\\pkg\\", "some items"};
    for (const std::string& name : names) items.paths.push_back(items.folder + name);
    form_ = std::make_unique<perms::frmPermissions>(services(), items);
    form_->initSetup();
  }
  template <typename Widget>
  Widget* find(const char* name) {
    Widget* const found = form_->findChild<Widget*>(name);
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  QCheckBox* box(const char* name) { return find<QCheckBox>(name); }
  /// "x" checked, "." clear, "?" mixed.
  std::string boxes() {
    std::string text;
    for (const char* name :
         {"checkOR", "checkOW", "checkOE", "checkUR", "checkUW", "checkUE", "checkER", "checkEW", "checkEE"})
      text += !box(name)->toolTip().isEmpty() ? '?' : box(name)->isChecked() ? 'x' : '.';
    return text;
  }
  unsigned modeOf(const std::string& name) const { return tests::modeOf(host("pkg/" + name)); }
  std::unique_ptr<perms::frmPermissions> form_;
};

TEST_F(PermissionsFormTest, OpensAsThePreferencesSay) {
  QSize atFirst;
  person_.onEvents = [&] {
    if (atFirst.isEmpty()) atFirst = form_->size();
    QApplication::processEvents();
  };
  open({"a", "d"});
  EXPECT_EQ(form_->size(), atFirst);
  tests::checkTexts(*form_);
  EXPECT_TRUE(find<QRadioButton>("optAuto")->isChecked());
  EXPECT_EQ(boxes(), "xx.x..x..");
  EXPECT_FALSE(box("checkUW")->isEnabled());
  EXPECT_TRUE(box("checkSubDirs")->isVisible() && box("checkSubDirs")->isChecked());
  EXPECT_FALSE(find<QFrame>("frameWait")->isVisible());
  auto* const list = find<QListWidget>("listExecutables");
  QStringList extensions;
  for (int i = 0; i < list->count(); ++i) {
    extensions.append(list->item(i)->text());
    EXPECT_EQ(list->item(i)->checkState(), Qt::Checked);
  }
  EXPECT_EQ(extensions.join(' '), QString(".exe .ktl .bin .com .bat .cmd .sh"));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(2)).center());
  EXPECT_TRUE(list->selectedItems().isEmpty());
  find<QRadioButton>("optManual")->click();
  EXPECT_TRUE(box("checkUW")->isEnabled());
  EXPECT_FALSE(box("checkOR")->isEnabled());
  stored_.setDefaultPermissionMode("0");
  stored_.setPermissionOptions("0");
  open({"a"});
  EXPECT_TRUE(find<QRadioButton>("optManual")->isChecked());
  EXPECT_EQ(form_->focusWidget(), find<QRadioButton>("optManual"));
  EXPECT_EQ(boxes(), "xxxx.xx.x");
  EXPECT_FALSE(box("checkSubDirs")->isVisible());
}

TEST_F(PermissionsFormTest, MixedBoxesAreMarkedUntilTheyAreClicked) {
  stored_.setDefaultPermissionMode("0");
  stored_.setPermissionOptions("0");
  open({"a", "b", "c"});
  EXPECT_EQ(boxes(), "xxxx.x?.?");
  const auto colour = [this](const char* name) { return box(name)->palette().color(QPalette::WindowText); };
  EXPECT_NE(colour("checkER"), colour("checkEW"));
  EXPECT_FALSE(box("checkER")->isChecked() || box("checkER")->isTristate());
  EXPECT_FALSE(box("checkER")->accessibleDescription().isEmpty());
  box("checkER")->click();
  EXPECT_EQ(boxes(), "xxxx.xx.?");
  EXPECT_EQ(colour("checkER"), colour("checkEW"));
}

TEST_F(PermissionsFormTest, CtrlCarriesAClickToTheOtherClasses) {
  stored_.setDefaultPermissionMode("0");
  stored_.setPermissionOptions("0");
  const std::pair<const char*, const char*> cases[] = {
      {"checkOW", "x.xx.x?.?"}, {"checkOE", "xx.x..?.."}, {"checkUR", "xxx..x..?"}, {"checkUW", "xxxxxx?x?"},
      {"checkUE", "xx.x..?.."}, {"checkER", "xxxx.xx.?"}, {"checkEW", "xxxxxx?x?"}, {"checkEE", "xxxx.x?.x"}};
  for (const auto& [clicked, expected] : cases) {
    open({"a", "b", "c"});
    QTest::keyPress(find<QPushButton>("cmdSetP"), Qt::Key_Control);
    box(clicked)->click();
    EXPECT_EQ(boxes(), expected) << clicked;
    QTest::keyRelease(box("checkOW"), Qt::Key_Control);
    const bool group = box("checkUW")->isChecked();
    box("checkEW")->click();
    EXPECT_EQ(box("checkUW")->isChecked(), group) << "Ctrl is up";
  }
  QTest::keyPress(box("checkOW"), Qt::Key_Control);
  QEvent gone(QEvent::WindowDeactivate);
  QApplication::sendEvent(form_.get(), &gone);
  const bool group = box("checkUW")->isChecked();
  box("checkOW")->click();
  EXPECT_EQ(box("checkUW")->isChecked(), group);
}

TEST_F(PermissionsFormTest, ARunSetsTheModesAndUnloads) {
  open({"d", "a"});
  perms::PermissionUndo taken;
  bool disabled = false;
  QObject::connect(form_.get(), &perms::frmPermissions::ran,
                   [&](const perms::PermissionUndo& undo) { taken = undo; });
  person_.onEvents = [&] {
    QApplication::processEvents();
    disabled |= !find<QPushButton>("cmdSetP")->isEnabled() && !find<QGroupBox>("Frame2")->isEnabled() &&
                form_->windowTitle() == QString("Setting Permissions..") &&
                find<QPushButton>("cmdSetP")->text() == QString("Setting..");
  };
  find<QRadioButton>("optManual")->click();
  box("checkEW")->click();
  box("checkUR")->click();
  find<QPushButton>("cmdSetP")->click();
  EXPECT_TRUE(disabled);
  EXPECT_EQ(person_.told, Texts{"Pakrune|result = "});
  EXPECT_EQ(log_.all, " Permissions(606) set: 2 items in C:\\pkg\\\n");
  EXPECT_TRUE(modeOf("d") == 0717 && modeOf("d/e.sh") == 0606 && modeOf("a") == 0606);
  EXPECT_FALSE(form_->isVisible());
  EXPECT_EQ(taken.entries.size(), 3U);
}

TEST_F(PermissionsFormTest, CancelStopsARunAndTheFilling) {
  open({"a", "d"});
  tool("chmod.exe", "touch '" + host("runs") + "'; sleep 20");
  person_.onEvents = [this] {
    QApplication::processEvents();
    if (fs::exists(host("runs"))) form_->close();
  };
  find<QPushButton>("cmdSetP")->click();
  EXPECT_FALSE(form_->isVisible());
  EXPECT_NE(log_.all.find(" Stopped: setting permissions, after 0 of 2 items\n FAILED"), std::string::npos);
  stored_.setPermissionOptions("0");
  tool("ls.exe", "sleep 20");
  bool waited = false;
  person_.onEvents = [&, this] {
    QApplication::processEvents();
    QFrame* const wait = find<QFrame>("frameWait");
    waited |= wait->isVisible() && wait->geometry() == form_->rect();
    find<QPushButton>("cmdCancel")->click();
  };
  open({"a", "d"});
  person_.onEvents = {};
  EXPECT_TRUE(waited);
  EXPECT_FALSE(form_->isVisible() || find<QFrame>("frameWait")->isVisible());
}

TEST_F(PermissionsFormTest, ThePreviewListsAndNarrows) {
  const perms::PermissionItems items{{"C:\\pkg\\d", "C:\\pkg\\a", "C:\\pkg\\c"}, true, "C:\\pkg\\", ""};
  const perms::PermissionChoice choice{false, {7, 4, 0}, true};
  perms::frmPreview preview(services());
  preview.fill(items, choice);
  tests::checkTexts(preview);
  auto* const list = preview.findChild<QTreeView*>("listChanges");
  const QAbstractItemModelTester tester(list->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
  const auto cell = [list](int row, int column) {
    return list->model()->index(row, column).data().toString();
  };
  EXPECT_EQ(cell(0, 0) + " " + cell(0, 1), QString("C:\\pkg\\d rwxr-xr-x -> rwxr-x--x"));
  EXPECT_EQ(cell(1, 0) + " " + cell(1, 1), QString("C:\\pkg\\d\\e.sh rw------- -> rwxr-----"));
  auto* const count = preview.findChild<QLabel*>("lblCount");
  EXPECT_EQ(count->text(), QString("4 entries change, 0 stay as they are"));
  auto* const narrow = preview.findChild<QLineEdit*>("txtNarrow");
  const std::pair<const char*, int> texts[] = {{"E.SH", 1}, {"rwxr-x---", 1}, {"nowhere", 0}, {"", 4}};
  for (const auto& [text, rows] : texts) {
    narrow->setText(text);
    EXPECT_EQ(list->model()->rowCount(), rows) << text;
    EXPECT_EQ(count->text().contains("shown"), *text != 0);
  }
  EXPECT_TRUE(modeOf("d/e.sh") == 0600 && modeOf("a") == 0755);
  preview.close();
  EXPECT_FALSE(preview.isVisible());
  tool("find.exe", "sleep 20");
  person_.onEvents = [&preview] {
    QApplication::processEvents();
    preview.findChild<QPushButton*>("cmdClose")->click();
  };
  preview.fill(items, choice);
  EXPECT_FALSE(preview.isVisible());
}

TEST(Controls, StatedColoursAreLightenedInTheDarkOnly) {
  using platform::desktop::readableColour;
  const QColor dark(40, 40, 40);
  for (const QColor& colour : {QColor(Qt::red), QColor(Qt::blue), QColor(60, 60, 60), QColor(Qt::black)}) {
    EXPECT_EQ(readableColour(colour, Qt::white), colour);
    EXPECT_GE(platform::desktop::contrast(readableColour(colour, dark), dark), 4.5);
  }
  EXPECT_EQ(readableColour(Qt::yellow, dark), QColor(Qt::yellow));
}

TEST(Controls, ALongPathIsCutInItsMiddleAndToldWhole) {
  platform::desktop::PathLabel label;
  label.setText(QString("C:\\") + QString(300, 'x') + "<b>end");
  label.resize(200, 30);
  EXPECT_LT(label.minimumSizeHint().width(), 200);
  label.show();
  const QImage shown = label.grab().toImage();
  label.setText(QString("C:\\") + QString(300, 'x') + "<b>enD");
  EXPECT_NE(label.grab().toImage(), shown);
}

}  // namespace
