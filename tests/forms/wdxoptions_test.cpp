#include <fcntl.h>

#include "tests/forms/MainWindow.h"

namespace {

namespace fs = std::filesystem;
using tests::the;

/// The serial download from the main window, with a terminal line of the test's own behind COM2 and a console
/// that keeps what it was started with.
class SerialDownload : public tests::MainTest {
 protected:
  SerialDownload() {
    grantpt(line_.get());
    unlockpt(line_.get());
    for (const char* port : {"PAKRUNE_COM1", "PAKRUNE_COM3"}) environment_.set(port, "/nowhere");
    environment_.set("PAKRUNE_COM2", ptsname(line_.get()));
    tool("cmd.exe", keep("%s \"$*\""));
    load({"-d", "C:\\pkg"});
    window_.browsing().selectRow("a.txt");
    window_.getDirPaneSelected();
  }
  void putLoader() const { std::ofstream(root_ + "/prog/wdx.exe") << "loader"; }
  void save(const std::string& text) const { std::ofstream(root_ + "/prog/savedsettings.dlo") << text; }
  std::string saved() const { return output("cat " + root_ + "/prog/savedsettings.dlo"); }
  bool nothingStarted() const { return !fs::exists(root_ + "/kept") && !fs::exists(root_ + "/new"); }
  /// Acts on the next dialog of that name, whatever stands until it comes.
  static void onNext(const char* name, const std::function<void(QDialog&)>& act) {
    QTimer::singleShot(5, [name, act] {
      auto* const modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      modal == nullptr || modal->objectName() != name ? onNext(name, act) : act(*modal);
    });
  }
  /// Opens the dialog from the menu bar.
  void open(const std::function<void(QDialog&)>& act) {
    tests::onNextModal<QDialog>(act);
    action("mnuSerial")->trigger();
  }
  /// What is chosen: port, baud rate, whether the window is kept.
  static std::string chosen(const QDialog& form) {
    std::string text;
    for (const char* name : {"optCom1", "optCom2", "optCom3", "b9600", "b19200", "b115200", "checkKeepOpen"})
      text += the<QAbstractButton>(form, name).isChecked() ? '1' : '0';
    return text;
  }

  platform::Descriptor line_{posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)};
};

TEST_F(SerialDownload, TheDialogShowsWhatWasSavedAndStartsTheLoader) {
  putLoader();
  const struct {
    const char *saved, *shown;
    bool complete;
  } cases[] = {{nullptr, "1000010", true},
               {"COM3\r\n19200\r\nopen\r\n", "0010101", true},
               {"COM2", "0100000", false},
               {"\xFF\xFE?", "1000010", true}};
  for (const auto& one : cases) {
    if (one.saved != nullptr) save(one.saved);
    open([&one](QDialog& form) {
      EXPECT_EQ(the<QLineEdit>(form, "txtfile").text(), QString("C:\\pkg\\a.txt"));
      EXPECT_EQ(chosen(form), one.shown);
      EXPECT_EQ(the(form, "cmdSend").isEnabled(), one.complete);
      tests::checkTexts(form);
      QTest::keyClick(&form, Qt::Key_Escape);
    });
  }
  save("COM1");
  open([this](QDialog& form) {
    tests::press(form, "optCom2");
    tests::press(form, "b19200");
    tests::press(form, "checkKeepOpen");
    EXPECT_TRUE(the(form, "optCom2").toolTip().contains(ptsname(line_.get())));
    tests::press(form, "cmdSend");
    EXPECT_FALSE(form.isVisible());
  });
  EXPECT_EQ(saved(), "COM2\r\n19200\r\nopen\r\n");
  EXPECT_EQ(kept(), "/k \"\"" + program_ + "wdx.exe\" -p 2 -b 19200 -i \"a.txt\"\" & pause");
  EXPECT_TRUE(testworld::has(logText(), " Initiated a.txt download on COM port 2"));
}

TEST_F(SerialDownload, APortInUseIsToldAndTriedAgain) {
  putLoader();
  save("COM2\r\n9600\r\nclose\r\n");
  int boxes = 0;
  platform::Descriptor other(::open(ptsname(line_.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
  open([&](QDialog& form) {
    onNext("frmPortErr", [&](QDialog& error) {
      EXPECT_EQ(the<QLabel>(error, "lblerr").text(), QString("COM2 is already open."));
      EXPECT_TRUE(nothingStarted());
      tests::checkTexts(error);
      ++boxes;
      onNext("frmPortErr", [&](QDialog& again) {
        ++boxes;
        other = platform::Descriptor();
        tests::press(again, "cmdRetry");
      });
      tests::press(error, "cmdRetry");
    });
    tests::press(form, "cmdSend");
  });
  EXPECT_EQ(boxes, 2);
  EXPECT_EQ(kept(), "/c \"\"" + program_ + "wdx.exe\" -p 2 -b 9600 -i \"a.txt\"\" & pause");
  environment_.set("PAKRUNE_COM2", "/nowhere");
  open([](QDialog& form) {
    onNext("frmPortErr", [](QDialog& error) { tests::press(error, "cmdCancel"); });
    tests::press(form, "cmdSend");
  });
  EXPECT_TRUE(nothingStarted() && person_.told.empty());
}

TEST_F(SerialDownload, ALoaderIsAskedForUntilItHasItsName) {
  write("tools/other.exe");
  write("tools/wdx.exe");
  const std::string question =
      "Could Not Find wdx.exe|Unable to locate 'wdx.exe', press OK to manually locate";
  pickers_.answers = {"C:\\tools\\other.exe", "C:\\tools\\wdx.exe"};
  open([this](QDialog& form) {
    EXPECT_EQ(chosen(form), "1000010");
    EXPECT_EQ(pickers_.asked.title + "|" + pickers_.asked.filter + "|" + pickers_.asked.fileName,
              "Select wdx.exe|wdx.exe|wdx.exe");
    tests::press(form, "optCom2");
    tests::press(form, "cmdSend");
  });
  EXPECT_EQ(person_.told, std::vector<std::string>{question});
  EXPECT_EQ(kept(), "/c \"\"C:\\tools\\wdx.exe\" -p 2 -b 115200 -i \"a.txt\"\" & pause");
  // Cancelled, it is asked for again by Send; it is kept for one dialog only.
  pickers_.answers = {""};
  open([](QDialog& form) { tests::press(form, "cmdSend"); });
  EXPECT_EQ(person_.told, std::vector<std::string>(3, question));
  EXPECT_TRUE(nothingStarted());
}

TEST_F(SerialDownload, TheOtherWayIsOneClickAway) {
  putLoader();
  std::string opened;
  open([&opened](QDialog& form) {
    onNext("frmNetloader", [&opened](QDialog& other) {
      opened = other.objectName().toStdString() + " " + the<QLineEdit>(other, "txtfile").text().toStdString();
      other.reject();
    });
    tests::press(form, "cmdNetwork");
  });
  EXPECT_EQ(opened, "frmNetloader C:\\pkg\\a.txt");
}

TEST_F(SerialDownload, WhoWillNotShowTheLoaderEndsTheProgram) {
  person_.agrees = false;
  action("mnuSerial")->trigger();
  EXPECT_TRUE(window_.ended());
  EXPECT_EQ(person_.told.size(), 1U);
}

}  // namespace
