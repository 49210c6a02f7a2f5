#include "archive/ui/frmTar.h"
#include "platform/desktop/Gate.h"
#include "platform/desktop/ScrollList.h"
#include "tests/forms/Forms.h"

namespace {

using archive::CheckTarSelection;
using platform::desktop::ScrollList;
using tests::press;
using tests::the;
using Names = std::vector<std::string>;

/// The main window's side: what is selected, and what was asked of it.
struct FakeMainWindow : tests::Pane, runtime::Downloads {
  explicit FakeMainWindow(const platform::Busy& gate) : busy(gate) { folder = "C:\\pkg\\"; }
  void note(const std::string& deed) { asked.push_back((busy.held() ? "gate held: " : "") + deed); }
  void refreshKeepList() override { note("refresh"); }
  void netSetFile(const std::string& path) override {
    for (const QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible() && window->objectName() == "frmTar") note("over the archive dialog");
    note("network " + path);
  }
  void showfrmWDXOptions(const std::string& path) override { note("serial " + path); }

  const platform::Busy& busy;
  std::vector<std::string> asked;
};

class TarFormTest : public testworld::World {
 protected:
  TarFormTest() {
    write("pkg/a");
    write("pkg/lib/part");
    findTools();
    window_.items = {"lib", "a"};
  }
  void select(const Names& names) {
    window_.selected.clear();
    for (const auto& name : names) window_.selected.push_back("C:\\pkg\\" + name);
  }
  bool opens() { return CheckTarSelection(services(), window_, window_, pickers_, nullptr); }
  /// Shows the dialog as the button does and acts on it; it is cancelled when it stays open.
  bool show(const Names& names, const std::function<void(QDialog&)>& act) {
    select(names);
    QTimer::singleShot(0, [&] {
      auto* const form = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(form, nullptr);
      act(*form);
      stayedOpen_ = form->isVisible();
      if (stayedOpen_) form->findChild<QPushButton*>("cmdCancel")->click();
    });
    return opens();
  }

  FakeMainWindow window_{busy_};
  tests::Pickers pickers_;
  bool stayedOpen_ = false;
};

bool on(QDialog& form, const char* name) { return the<QAbstractButton>(form, name).isChecked(); }
std::string outputOf(QDialog& form) { return the<QLineEdit>(form, "txtFileOut").text().toStdString(); }

TEST_F(TarFormTest, FoldersAreOfferedByTheirContents) {
  window_.rootOffered = false;
  for (const auto& [names, box, archive, inside] :
       {std::tuple<Names, const char*, std::string, const char*>{
            {}, "checkTime", "C:\\pkg\\pkg.tgz", "a\nlib/\nlib/part\n"},
        {{}, "checkFolderContents", "C:\\pkg\\pkg.tgz", "pkg/\npkg/a\npkg/lib/\npkg/lib/part\n"},
        {{"lib"}, "checkOwner", "C:\\pkg\\lib.tgz", "part\n"}}) {
    EXPECT_TRUE(show(names, [folder = !names.empty(), pressed = box, path = archive](QDialog& form) {
      EXPECT_EQ(outputOf(form), path);
      EXPECT_EQ(the(form, "checkContentsOnly").isVisible(), folder);
      EXPECT_EQ(the(form, "checkFolderContents").isVisible(), !folder);
      for (const char* ticked : {"checkContentsOnly", "checkOwner", "checkGroup", "optNew"})
        EXPECT_TRUE(on(form, ticked)) << ticked;
      EXPECT_EQ(the<ScrollList>(form, "listOwner").entries().last(), "usr8");
      press(form, pressed);
      EXPECT_EQ(the(form, "listOwner").isEnabled(), on(form, "checkOwner"));
      press(form, "cmdTar");
    }));
    EXPECT_FALSE(stayedOpen_);
    EXPECT_EQ(output("tar -tf " + *drives_.toHost(archive)), inside);
    EXPECT_EQ(window_.shown, archive);
  }
  EXPECT_EQ(window_.asked, Names(3, "gate held: refresh"));
  EXPECT_EQ(person_.told.front(),
            "Warning..|This will create a tar file for all files and subdirectories under:\rC:\\pkg");
}

TEST_F(TarFormTest, AFileGoesToTheClipboardThenSerialThenNetwork) {
  show({"a"}, [&](QDialog& form) {
    EXPECT_EQ(outputOf(form), "C:\\pkg\\a.tgz");
    EXPECT_FALSE(the(form, "checkFolderContents").isEnabled());
    the<ScrollList>(form, "listOwner").setTopIndex(8);
    for (const char* box : {"checkNetworkDownload", "checkCopyToClipboard", "checkSerialDownload"})
      press(form, box);
    the<QLineEdit>(form, "txtFileOut").setText(QString::fromUtf8("C:\\pkg\\b \xEF\x83\xBF.tbz2"));
    QTest::keyClick(&the<QLineEdit>(form, "txtFileOut"), Qt::Key_Return);
  });
  EXPECT_TRUE(!stayedOpen_ && testworld::has(output("tar -tvf " + root_ + "/disk/pkg/b*.tbz2"), " 0/1 "));
  const std::string path = "C:\\pkg\\b \xEF\x83\xBF.tbz2";
  EXPECT_EQ(window_.asked, (Names{"gate held: refresh", "serial " + path, "network " + path}));
  const QMimeData* const held = QApplication::clipboard()->mimeData();
  const QByteArray url = "file://" + QByteArray::fromStdString(root_) + "/disk/pkg/b%20%FF.tbz2";
  EXPECT_EQ(held->data("text/uri-list").trimmed(), url);
  EXPECT_EQ(held->data("x-special/gnome-copied-files"), "copy\n" + url);
}

TEST_F(TarFormTest, ChecksStopBeforeAnythingIsShown) {
  person_.agrees = false;
  EXPECT_TRUE(!opens() && window_.selected.empty());
  person_.agrees = true;
  const auto whole = archive::checkSelection(services(), window_);
  EXPECT_TRUE(whole && whole->selectedPaths.empty() && whole->paneItems == window_.items);
  select({"gone"});
  EXPECT_FALSE(opens());
  select({});
  window_.folder = "C:\\gone\\";
  EXPECT_FALSE(opens());
  EXPECT_EQ(person_.told.back(),
            "Unable to locate path|The selected directory no longer exists\rTry clicking Refresh");
}

TEST_F(TarFormTest, SaveDialogAddsExtensionsAndAsksAgain) {
  write("pkg/old.tbz2");
  person_.agrees = false;
  pickers_.filter = 3;
  pickers_.answers = {"C:\\pkg\\old", "C:\\pkg.d\\new", "", "C:\\pkg\\named.bin"};
  show({"a"}, [&](QDialog& form) {
    for (const char* output : {"C:\\pkg.d\\new.tbz2", "C:\\pkg.d\\new.tbz2", "C:\\pkg\\named.bin"}) {
      press(form, "cmdGetOut");
      EXPECT_EQ(outputOf(form), output);
    }
    EXPECT_EQ(person_.told, Names{"Select Anyway?|'C:\\pkg\\old.tbz2' already exists"});
    EXPECT_EQ(pickers_.asked.startFolder, "C:\\pkg");
  });
}

TEST_F(TarFormTest, AFailureLeavesTheDialogOpenForAnotherTry) {
  show({"a"}, [&](QDialog& form) {
    auto& output = the<QLineEdit>(form, "txtFileOut");
    output.setText("C:\\pkg\\x.tar");
    press(form, "optAppend");
    EXPECT_TRUE(on(form, "optAppend"));
    for (const auto& [typed, said] :
         {std::pair("C:\\pkg\\x.TGZ", "Output file error..|Unrecognized Tar file extension"),
          {"q:/x.tgz", "Output file error..|There is no drive 'Q:'"},
          {"C:\\nowhere\\x.tgz", ""}}) {
      output.setText(typed);
      EXPECT_TRUE(!the(form, "optAppend").isEnabled() && on(form, "optNew"));
      the(form, "cmdTar").setFocus();
      press(form, "cmdTar");
      EXPECT_TRUE(testworld::has(person_.told.back(), said));
      EXPECT_EQ(form.focusWidget() == &output, *said != 0);
    }
    EXPECT_TRUE(form.isVisible() && the(form, "cmdTar").isEnabled() && window_.asked.empty());
    output.setText("lib/o:1.tgz");
    press(form, "cmdTar");
  });
  EXPECT_EQ(output("tar --force-local -tf " + host("pkg/lib/o:1.tgz")) + (stayedOpen_ ? "open" : ""), "a\n");
}

TEST_F(TarFormTest, CancelStopsTheJobAndTheDialogStays) {
  platform::desktop::Gate gate(busy_);
  tool("tar.exe", "exec sleep 20");
  const std::vector<std::function<void(QDialog&)>> ways = {
      [](QDialog& form) { press(form, "cmdCancel"); },
      [](QDialog& form) { QTest::keyClick(form.focusWidget(), Qt::Key_Escape); },
      [](QDialog& form) { form.close(); }};
  show({"a"}, [&](QDialog& form) {
    for (const auto& way : ways) {
      log_.all.clear();
      auto& button = the<QPushButton>(form, "cmdTar");
      person_.onEvents = [&] {
        QCoreApplication::processEvents();
        EXPECT_TRUE(busy_.slow() || the(form, "txtFileOut").isEnabled());
        if (!busy_.slow()) return;
        EXPECT_EQ(button.text(), "Creating..");
        for (const char* name : {"cmdTar", "Frame1", "txtFileOut", "optNew"})
          EXPECT_FALSE(the(form, name).isEnabled()) << name;
        if (!busy_.stopRequested()) way(form);
      };
      button.click();
      person_.onEvents = {};
      EXPECT_EQ(log_.all + button.text().toStdString(), " Stopped: creating C:\\pkg\\a.tgz\nCreate Tar");
      EXPECT_TRUE(button.isEnabled() && the(form, "txtFileOut").isEnabled());
    }
  });
  EXPECT_TRUE(stayedOpen_ && window_.asked.empty() && person_.told.empty());
}

}  // namespace
