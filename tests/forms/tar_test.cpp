#include "archive/ui/frmTar.h"
#include "platform/desktop/Gate.h"
#include "platform/desktop/ScrollList.h"
#include "tests/forms/Forms.h"

namespace {

using archive::CheckTarSelection;
using platform::desktop::ScrollList;
using tests::press;
using tests::the;

/// The main window's side: what is selected, and what was asked of it.
struct FakeMainWindow : tests::Pane, runtime::Downloads {
  explicit FakeMainWindow(const platform::Busy& gate) : busy(gate) { folder = "C:\\pkg\\"; }
  void refreshKeepList() override {
    asked.emplace_back(busy.held() ? "refresh" : "refresh without the gate");
  }
  void netSetFile(const std::string& path) override {
    asked.push_back((busy.held() ? "gate held: network " : "network ") + path);
    for (const QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible() && window->objectName() == "frmTar")
        asked.emplace_back("over the archive dialog");
  }
  void showfrmWDXOptions(const std::string& path) override {
    asked.push_back((busy.held() ? "gate held: serial " : "serial ") + path);
  }

  const platform::Busy& busy;
  std::vector<std::string> asked;
};

/// Answers with the given names, each with a filter, one after the other.
struct FakePickers : tests::Pickers {
  std::string saveFile(const platform::desktop::FileRequest& request) override {
    asked = request;
    const auto [name, filter] = answers.empty() ? std::pair<std::string, int>() : answers.front();
    if (!answers.empty()) answers.erase(answers.begin());
    *request.chosenFilter = filter;
    return name;
  }
  std::vector<std::pair<std::string, int>> answers;
};

class TarFormTest : public testworld::World {
 protected:
  TarFormTest() {
    write("pkg/a");
    write("pkg/lib/part");
    findTools();
    window_.items = {"lib", "a"};
  }
  /// Shows the dialog as the button does and acts on it; it is cancelled when it stays open.
  bool show(const std::function<void(QDialog&)>& act) {
    QTimer::singleShot(0, [&] {
      auto* const form = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(form, nullptr);
      act(*form);
      stayedOpen_ = form->isVisible();
      if (stayedOpen_) form->findChild<QPushButton*>("cmdCancel")->click();
    });
    return CheckTarSelection(services(), window_, window_, pickers_, nullptr);
  }
  void select(const std::vector<std::string>& names) {
    window_.selected.clear();
    for (const auto& name : names) window_.selected.push_back("C:\\pkg\\" + name);
  }
  std::string members(const std::string& name) const { return output("tar -P -tf " + host(name)); }

  FakeMainWindow window_{busy_};
  FakePickers pickers_;
  bool stayedOpen_ = false;
};

bool on(QDialog& form, const char* name) { return the<QAbstractButton>(form, name).isChecked(); }
QString outputOf(QDialog& form) { return the<QLineEdit>(form, "txtFileOut").text(); }

TEST_F(TarFormTest, OneFolderOffersItsContents) {
  select({"lib"});
  window_.rootOffered = false;
  EXPECT_TRUE(show([&](QDialog& form) {
    EXPECT_EQ(outputOf(form), "C:\\pkg\\lib.tgz");
    EXPECT_TRUE(the(form, "checkContentsOnly").isVisible() && !the(form, "checkFolderContents").isVisible());
    for (const char* box : {"checkContentsOnly", "checkOwner", "checkGroup", "optNew"})
      EXPECT_TRUE(on(form, box)) << box;
    EXPECT_EQ(the<QLabel>(form, "lblAdd").text(), "1 items <b>");
    EXPECT_EQ(the<ScrollList>(form, "listOwner").entries().last(), "usr8");
    press(form, "checkOwner");
    EXPECT_FALSE(the(form, "listOwner").isEnabled());
    press(form, "cmdTar");
  }));
  EXPECT_FALSE(stayedOpen_);
  EXPECT_EQ(members("pkg/lib.tgz"), "part\n");
  EXPECT_EQ(window_.shown, "C:\\pkg\\lib.tgz");
  EXPECT_EQ(window_.asked, std::vector<std::string>{"refresh"});
}

TEST_F(TarFormTest, AFileGoesToTheClipboardThenSerialThenNetwork) {
  select({"a"});
  show([&](QDialog& form) {
    EXPECT_EQ(outputOf(form), "C:\\pkg\\a.tgz");
    EXPECT_FALSE(the(form, "checkFolderContents").isEnabled());
    the<ScrollList>(form, "listOwner").setTopIndex(8);
    for (const char* box : {"checkNetworkDownload", "checkCopyToClipboard", "checkSerialDownload"})
      press(form, box);
    the<QLineEdit>(form, "txtFileOut").setText(QString::fromUtf8("C:\\pkg\\b \xEF\x83\xBF.tbz2"));
    QTest::keyClick(&the<QLineEdit>(form, "txtFileOut"), Qt::Key_Return);
  });
  EXPECT_FALSE(stayedOpen_);
  EXPECT_TRUE(testworld::has(output("tar -tvf " + root_ + "/disk/pkg/b*.tbz2"), " 0/1 "));
  const std::string path = "C:\\pkg\\b \xEF\x83\xBF.tbz2";
  EXPECT_EQ(window_.asked, (std::vector<std::string>{"refresh", "serial " + path, "network " + path}));
  const QMimeData* const held = QApplication::clipboard()->mimeData();
  const QByteArray url = "file://" + QByteArray::fromStdString(root_) + "/disk/pkg/b%20%FF.tbz2";
  EXPECT_EQ(held->data("text/uri-list").trimmed(), url);
  EXPECT_EQ(held->data("x-special/gnome-copied-files"), "copy\n" + url);
}

TEST_F(TarFormTest, TheWholeFolderMayHoldItsParentEntry) {
  for (const bool parent : {false, true}) {
    window_.selected.clear();
    EXPECT_TRUE(show([&](QDialog& form) {
      EXPECT_EQ(outputOf(form), "C:\\pkg\\pkg.tgz");
      if (parent) press(form, "checkFolderContents");
      press(form, "cmdTar");
    }));
    EXPECT_EQ(members("pkg/pkg.tgz"),
              parent ? "pkg/\npkg/a\npkg/lib/\npkg/lib/part\n" : "a\nlib/\nlib/part\n");
  }
  EXPECT_EQ(person_.told.front(),
            "Warning..|This will create a tar file for all files and subdirectories under:\rC:\\pkg");
}

TEST_F(TarFormTest, ChecksStopBeforeAnythingIsShown) {
  const auto stops = [this] { return !CheckTarSelection(services(), window_, window_, pickers_, nullptr); };
  person_.agrees = false;
  EXPECT_TRUE(stops() && window_.selected.empty());
  person_.agrees = true;
  const auto whole = archive::checkSelection(services(), window_);
  EXPECT_TRUE(whole && whole->selectedPaths.empty() && whole->paneItems == window_.items);
  select({"gone"});
  EXPECT_TRUE(stops());
  select({});
  window_.folder = "C:\\gone\\";
  EXPECT_TRUE(stops());
  EXPECT_EQ(person_.told.back(),
            "Unable to locate path|The selected directory no longer exists\rTry clicking Refresh");
}

TEST_F(TarFormTest, SaveDialogAddsExtensionsAndAsksAgain) {
  write("pkg/old.tar");
  select({"a"});
  person_.agrees = false;
  pickers_.answers = {{"C:\\pkg\\old", 2}, {"C:\\pkg.d\\new", 3}};
  show([&](QDialog& form) {
    press(form, "cmdGetOut");
    EXPECT_EQ(person_.told, std::vector<std::string>{"Select Anyway?|'C:\\pkg\\old.tar' already exists"});
    EXPECT_EQ(outputOf(form), "C:\\pkg.d\\new.tbz2");
    EXPECT_EQ(pickers_.asked.startFolder, "C:\\pkg");
    press(form, "cmdGetOut");  // cancelled
    EXPECT_EQ(outputOf(form), "C:\\pkg.d\\new.tbz2");
    pickers_.answers = {{"C:\\pkg\\named.bin", 1}};
    press(form, "cmdGetOut");
    EXPECT_EQ(outputOf(form), "C:\\pkg\\named.bin");
  });
}

TEST_F(TarFormTest, AFailureLeavesTheDialogOpenForAnotherTry) {
  select({"a"});
  show([&](QDialog& form) {
    auto& append = the<QRadioButton>(form, "optAppend");
    auto& output = the<QLineEdit>(form, "txtFileOut");
    output.setText("C:\\pkg\\x.tar");
    ASSERT_TRUE(append.isEnabled());
    append.click();
    output.setText("C:\\pkg\\x.TGZ");
    EXPECT_TRUE(!append.isEnabled() && on(form, "optNew"));
    the(form, "cmdTar").setFocus();
    press(form, "cmdTar");
    EXPECT_EQ(person_.told.back(), "Output file error..|Unrecognized Tar file extension");
    EXPECT_EQ(form.focusWidget(), &output);
    output.setText("q:/x.tgz");
    press(form, "cmdTar");
    EXPECT_EQ(person_.told.back(), "Output file error..|There is no drive 'Q:'");
    output.setText("C:\\nowhere\\x.tgz");
    press(form, "cmdTar");
    EXPECT_TRUE(form.isVisible() && the(form, "cmdTar").isEnabled() && window_.asked.empty());
    output.setText("lib/o:1.tgz");
    press(form, "cmdTar");
  });
  EXPECT_FALSE(stayedOpen_);
  EXPECT_EQ(members("pkg/lib/o:1.tgz"), "a\n");
}

TEST_F(TarFormTest, CancelStopsTheJobAndTheDialogStays) {
  platform::desktop::Gate gate(busy_);
  select({"a"});
  tool("tar.exe", "exec sleep 20");
  const std::vector<std::function<void(QDialog&)>> ways = {
      [](QDialog& form) { press(form, "cmdCancel"); },
      [](QDialog& form) { QTest::keyClick(form.focusWidget(), Qt::Key_Escape); },
      [](QDialog& form) { form.close(); }};
  show([&](QDialog& form) {
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
      EXPECT_EQ(log_.all, " Stopped: creating C:\\pkg\\a.tgz\n");
      EXPECT_EQ(button.text(), "Create Tar");
      EXPECT_TRUE(button.isEnabled() && the(form, "txtFileOut").isEnabled());
    }
  });
  EXPECT_TRUE(stayedOpen_);
  EXPECT_TRUE(window_.asked.empty() && person_.told.empty());
}

}  // namespace
