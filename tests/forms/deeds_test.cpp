#include "browser/FileDeeds.h"
#include "platform/DesktopEntry.h"
#include "platform/TextEditor.h"
#include "platform/Trash.h"
#include "tests/forms/MainWindow.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class Deeds : public tests::MainTest {
 protected:
  Deeds() {
    setenv("HOME", root_.c_str(), 1);
    setenv("XDG_DATA_HOME", (root_ + "/data").c_str(), 1);
    window_.resize(900, 600);
    load({host("pkg")});
    window_.browsing().openFolder("C:\\pkg");
    QApplication::setActiveWindow(&window_);
    window_.browsing().focusDirPane();
    QApplication::processEvents();
  }
  ~Deeds() override {
    fs::permissions(host("pkg"), fs::perms(0755));
    setenv("HOME", home_.c_str(), 1);
    unsetenv("XDG_DATA_HOME");
  }

  void select(const Names& names) {
    tests::the<QTreeView>(window_, "DirPane").clearSelection();
    window_.browsing().clearCurrentRow();
    for (const std::string& name : names) window_.browsing().selectRow(name);
  }
  void key(Qt::Key key, Qt::KeyboardModifiers keys = {}) {
    QTest::keyClick(find<QTreeView>("DirPane"), key, keys);
    QApplication::processEvents();
  }
  QLineEdit* box() { return find<QTreeView>("DirPane")->viewport()->findChild<QLineEdit*>("txtName"); }
  void type(const char* name, Qt::Key end) {
    ASSERT_NE(box(), nullptr);
    box()->setText(QString::fromUtf8(name));
    QTest::keyClick(box(), end);
    QTRY_VERIFY(box() == nullptr);
    QApplication::processEvents();
  }
  std::string trashed(const std::string& name) const {
    return output("cat '" + root_ + "/data/Trash/files/" + name + "'");
  }

  std::string home_ = std::getenv("HOME");
};

TEST_F(Deeds, RenamesWhatCanBeRenamed) {
  fs::create_symlink("nowhere", host("pkg/link"));
  window_.refreshKeepList();
  const struct {
    std::string name, selected;
    const char* typed;
    Qt::Key end;
    std::string after;
    const char* refusal;
  } cases[] = {
      {"a.txt", "a", "n:\xEF\x80\xAA.txt", Qt::Key_Return, "n:*.txt", nullptr},
      {"b c.txt", "b c", "a.tar.gz", Qt::Key_Tab, "a.tar.gz", nullptr},
      {"a.tar.gz", "a", "x", Qt::Key_Escape, "a.tar.gz", nullptr},
      {"sub", "sub", "link", Qt::Key_Return, "sub", "There is an entry of that name."},
      {"link", "link", "a.tar.gz", Qt::Key_Return, "link", "There is an entry of that name."},
      {"link", "link", "b/c", Qt::Key_Return, "link", "cannot hold"},
      {"link", "link", "b\\c", Qt::Key_Return, "link", "cannot hold"},
      {"link", "link", "..", Qt::Key_Return, "link", "Each folder"},
      {"link", "link", "link", Qt::Key_Return, "link", nullptr},
      {"n:*.txt", "n\xEF\x80\xBA\xEF\x80\xAA", "n.txt", Qt::Key_Return, "n.txt", nullptr},
      {"link", "link", "", Qt::Key_Return, "link", "cannot be empty"},
      {"link", "link", "a\xEF\x80\x80z", Qt::Key_Return, "link", "that ends it"},
      {"sub", "sub", "sub.d", Qt::Key_Return, "sub.d", nullptr},
  };
  QSignalSpy listed(find<QTreeView>("DirPane")->model(), &QAbstractItemModel::modelReset);
  for (const auto& one : cases) {
    select({platform::holdName(one.name)});
    listed.clear();
    person_.told.clear();
    key(Qt::Key_F2);
    ASSERT_NE(box(), nullptr) << one.name;
    EXPECT_EQ(box()->selectedText().toStdString(), one.selected);
    type(one.typed, one.end);
    EXPECT_TRUE(fs::is_symlink(host("pkg/" + one.after)) || fs::exists(host("pkg/" + one.after)))
        << one.typed;
    EXPECT_EQ(selected(), Names{"C:\\pkg\\" + platform::holdName(one.after)}) << one.typed;
    EXPECT_EQ(find<QTreeView>("DirPane")->currentIndex().data().toString().toStdString(), one.after);
    EXPECT_EQ(listed.isEmpty(), one.end == Qt::Key_Escape || one.typed == one.name) << one.typed;
    EXPECT_EQ(person_.told.size(), one.refusal == nullptr ? 0U : 1U) << one.typed;
    if (one.refusal != nullptr) {
      EXPECT_TRUE(testworld::has(person_.told.front(), one.refusal));
    }
  }
  EXPECT_TRUE(testworld::has(logText(), " Renamed: sub -> sub.d"));
}

TEST_F(Deeds, MakesFoldersAndNamesThem) {
  fs::create_directory(host("pkg/New Folder"));
  window_.selectAllRows();
  key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(selected(), Names{"C:\\pkg\\New Folder (2)"});
  key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);  // while the box is open
  type("lib", Qt::Key_Return);
  EXPECT_TRUE(fs::is_directory(host("pkg/lib")) && !fs::exists(host("pkg/New Folder (2)")));
  EXPECT_EQ(selected(), Names{"C:\\pkg\\lib"});
}

TEST_F(Deeds, MovesToTheTrashAfterAQuestion) {
  const std::string odd = "\xFFodd" + std::string(240, 'x');
  write("pkg/" + odd, "odd");
  fs::create_symlink(host("pkg/sub"), host("pkg/link"));
  fs::create_symlink("nowhere", host("pkg/dangling"));
  for (const std::string& name : numbered("f", 12)) write("pkg/" + name);
  window_.refreshKeepList();
  Names names = numbered("f", 12);
  names.insert(names.end(), {"link", "dangling", "a.txt", platform::holdName(odd)});
  select(names);
  person_.agrees = false;
  key(Qt::Key_Delete);
  ASSERT_EQ(person_.told.size(), 1U);
  EXPECT_TRUE(testworld::has(person_.told.front(), "Move 16 entries to the trash?"));
  EXPECT_TRUE(testworld::has(person_.told.front(), "6 more"));
  EXPECT_TRUE(fs::exists(host("pkg/a.txt")));
  person_.agrees = true;
  fs::create_directories(root_ + "/data/Trash/files");
  std::ofstream(root_ + "/data/Trash/files/a.txt") << "older";
  key(Qt::Key_Delete);
  EXPECT_EQ(window_.paneItems(), (Names{"sub", "b c.txt"}));
  EXPECT_EQ(bytes("pkg/sub/x"), "text");
  EXPECT_EQ(trashed(odd.substr(0, 200)), "odd");
  EXPECT_TRUE(fs::is_symlink(root_ + "/data/Trash/files/dangling"));
  write("pkg/a.txt", "second");
  window_.refreshKeepList();
  select({"a.txt"});
  key(Qt::Key_Delete);
  EXPECT_EQ(trashed("a.txt") + trashed("a.txt.2") + trashed("a.txt.3"), "oldertextsecond");
  EXPECT_FALSE(fs::exists(root_ + "/data/Trash/info/a.txt.trashinfo"));
  EXPECT_TRUE(testworld::has(output("cat '" + root_ + "/data/Trash/info/a.txt.3.trashinfo'"),
                             "Path=" + host("pkg/a.txt") + "\n"));
}

TEST_F(Deeds, LosesNothingWithoutATrashAndAtAStop) {
  std::ofstream(root_ + "/data").put('x');
  select({"a.txt"});
  key(Qt::Key_Delete);
  EXPECT_EQ(bytes("pkg/a.txt"), "text");
  EXPECT_TRUE(testworld::has(person_.told.back(), "there is no trash for it"));
  fs::remove(root_ + "/data");
  select({"a.txt", "b c.txt"});
  meanwhile_ = [this] {
    if (fs::exists(root_ + "/data/Trash/files/a.txt")) busy_.requestStop();
  };
  key(Qt::Key_Delete);
  meanwhile_ = {};
  EXPECT_FALSE(fs::exists(host("pkg/a.txt")));
  EXPECT_TRUE(fs::exists(host("pkg/b c.txt")));
  EXPECT_TRUE(testworld::has(logText(), " Stopped: "));
}

TEST_F(Deeds, CopiesFilesAndPaths) {
  const std::string odd = platform::holdName("\xFF");
  write("pkg/\xFF");
  write("pkg/r\r");
  window_.refreshKeepList();
  select({"a.txt", "b c.txt", odd, platform::holdName("r\r")});
  key(Qt::Key_C, Qt::ControlModifier);
  const QMimeData* held = QApplication::clipboard()->mimeData();
  EXPECT_TRUE(testworld::has(held->text().toStdString(), "C:\\pkg\\a.txt\nC:\\pkg\\b c.txt"));
  EXPECT_TRUE(testworld::has(held->data("x-special/gnome-copied-files").toStdString(), "/pkg/%FF"));
  key(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(), host("pkg/a.txt") + "\n" + host("pkg/b c.txt"));
  EXPECT_TRUE(testworld::has(person_.told.back(), "its path is no text"));
  person_.told.clear();
  find<>("Dir1")->setFocus();
  QTest::keyClick(find<>("Dir1"), Qt::Key_Delete);
  EXPECT_EQ(person_.told, Names{});
}

/// The desktop names an editor whatever it says besides; the file is one argument.
TEST_F(Deeds, OpensTextsInTheDesktopsEditor) {
  fs::create_directories(root_ + "/data/applications/of");
  std::ofstream(root_ + "/data/applications/of/edit.desktop")
      << "[Desktop Action new]\nExec=false\n[Desktop Entry]\nName=E\nExec = \"" + root_ +
             "/prog/bin/e d\" --one=\"a\\\\\\\\b\" %i %U\n";
  tool("xdg-mime", "echo grep: no such file\necho of-edit.desktop");
  tool("e d", keep("'%s|' \"$@\""));
  environment_.set("PATH", drives_.toWindows(root_ + "/prog/bin"));
  write("pkg/-run.sh", "#!/bin/sh\n\x1A");
  write("pkg/data", std::string("a\0b", 3));
  window_.refreshKeepList();
  select({"-run.sh", "data", "sub"});
  key(Qt::Key_F4);
  EXPECT_EQ(kept(), "--one=a\\b|" + host("pkg/-run.sh") + "|");
  std::ofstream(root_ + "/data/applications/of/edit.desktop", std::ios::app) << "Terminal=true\n";
  tool("xdg-open", keep("'open %s|' \"$@\""));
  key(Qt::Key_F4);
  EXPECT_EQ(kept(), "open " + host("pkg/-run.sh") + "|");
  EXPECT_TRUE(
      testworld::has(logText(), " Not opened in the text editor: sub (it is no file), data (it is no text)"));
}

TEST_F(Deeds, DropsOpenTheFolderOfTheFirst) {
  const std::string odd = host("other/\xFF b");
  write("other/\xFF b");
  write("other/a.txt");
  QMimeData offer;
  offer.setUrls({QUrl(QStringLiteral("http://h/x")),
                 QUrl::fromEncoded("file://" + QByteArray::fromStdString(odd).toPercentEncoding("/")),
                 QUrl::fromLocalFile(QString::fromStdString(host("pkg/a.txt")))});
  const auto drop = [&] {
    QDragEnterEvent enter({5, 5}, Qt::CopyAction | Qt::MoveAction, &offer, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(&window_, &enter);
    QDropEvent event({5, 5}, Qt::CopyAction | Qt::MoveAction, &offer, Qt::LeftButton, Qt::ShiftModifier);
    if (enter.isAccepted()) QApplication::sendEvent(&window_, &event);
    EXPECT_TRUE(!enter.isAccepted() || event.dropAction() == Qt::CopyAction);
    QApplication::processEvents();
    return enter.isAccepted();
  };
  {
    const platform::Busy::Scope job(busy_);
    EXPECT_FALSE(drop());
  }
  window_.browsing().setEnabled(false);  // an archive covers it
  EXPECT_FALSE(drop());
  window_.browsing().setEnabled(true);
  EXPECT_TRUE(drop());
  EXPECT_EQ(selected(), Names{"C:\\other\\" + platform::holdName("\xFF b")});
  window_.browsing().openFolder("C:\\pkg");
  offer.setUrls({QUrl::fromLocalFile(QString::fromStdString(host("other/a.txt")))});
  person_.onEvents = [this] { fs::remove_all(host("other")); };
  EXPECT_TRUE(drop());
  EXPECT_EQ(selected(), Names{}) << "nothing in the folder that stayed";
}

}  // namespace
