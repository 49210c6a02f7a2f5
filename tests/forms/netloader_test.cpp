#include "download/ui/frmNetloader.h"
#include "platform/HeldName.h"
#include "platform/desktop/Gate.h"
#include "platform/desktop/ScrollList.h"
#include "tests/SimProcess.h"
#include "tests/forms/Forms.h"

namespace {

namespace fs = std::filesystem;
using download::frmNetloader;
using platform::desktop::ScrollList;

class NetloaderTest : public testworld::World {
 protected:
  NetloaderTest() {
    findTools();
    write("app.tgz", std::string(1500, 'a'));
  }
  frmNetloader& open(const std::string& path, std::uint16_t port = 1) {
    form_ = std::make_unique<frmNetloader>(services(), path);
    form_->show();
    fill({"127", "0", "0", "1"});
    the<QLineEdit>("txtPort").setText(QString::number(port));
    return *form_;
  }
  void fill(const QStringList& parts) {
    for (int i = 0; i < 4; ++i) box(i).setText(parts.value(i));
  }
  template <typename Control = QWidget>
  Control& the(const char* name) {
    return tests::the<Control>(*form_, name);
  }
  QLineEdit& box(int index) { return the<QLineEdit>(("txtIP_" + std::to_string(index)).c_str()); }
  QString address() {
    return box(0).text() + '.' + box(1).text() + '.' + box(2).text() + '.' + box(3).text();
  }
  void press(const char* name) { tests::press(*form_, name); }
  void pressPortKeys(QWidget& on) {
    QTest::keyClick(&on, Qt::Key_F10, Qt::ControlModifier | Qt::ShiftModifier);
  }
  QString status() { return the<QLabel>("lblStatus").text(); }
  /// Something that is done once, when the form shows this status while a job runs.
  void when(const char* wanted, std::function<void()> deed) {
    QObject::connect(&poll_, &QTimer::timeout, [this, wanted, deed, done = false]() mutable {
      if (done || form_ == nullptr || !busy_.held() || status() != wanted) return;
      done = true;
      deed();
    });
    poll_.start(5);
  }
  std::string told() const {
    std::string all;
    for (const std::string& text : person_.told) all += text + "\n";
    return all;
  }

  platform::desktop::Gate gate_{busy_};
  std::unique_ptr<frmNetloader> form_;
  QTimer poll_;
};

TEST_F(NetloaderTest, APlainFileIsSentWithItsModeAndTheOwnerAtTheTop) {
  write("run.sh", std::string(1234, 'r'));
  fs::permissions(host("run.sh"), fs::perms(0751));
  fs::create_symlink("run.sh", host("link"));
  SimProcess sim("--count 2");
  for (const char* path : {"C:\\run.sh", "C:\\link"}) {
    open(path, sim.port());
    EXPECT_TRUE(the<QCheckBox>("checkOR").isChecked() && !the("checkOR").isEnabled());
    EXPECT_FALSE(the<QCheckBox>("checkER").isChecked());
    the<QCheckBox>("checkEW").setChecked(true);
    the<ScrollList>("listNetO").setTopIndex(2);
    press("cmdSend");
    EXPECT_FALSE(form_->isVisible());
  }
  const std::string events = sim.rest();
  for (const std::string name : {"run.sh", "link"})
    EXPECT_TRUE(testworld::has(events, "request " + name + " size 1234 mode 753 owner usr3"));
  EXPECT_EQ(told(), "Send Complete|File Successfully Sent!\nSend Complete|File Successfully Sent!\n");
  EXPECT_EQ(log_.all, " Successfully sent run.sh to 127.0.0.1\n Successfully sent link to 127.0.0.1\n");
}

TEST_F(NetloaderTest, WhileATransferRunsOnlyCancelActs) {
  const char* const controls[] = {"txtfile", "txtIP_0",  "txtIP_1",    "txtIP_2", "txtIP_3",      "txtPort",
                                  "checkOW", "listNetO", "framePerms", "cmdSend", "listAddresses"};
  write("plain");
  SimProcess sim("--once --free 0 --delay 100");
  open("C:\\plain", sim.port());
  ASSERT_TRUE(QTest::qWaitForWindowActive(form_.get()));
  box(2).setFocus();
  when("Checking..", [&] {
    for (const char* name : controls) EXPECT_FALSE(the(name).isEnabled()) << name;
    EXPECT_TRUE(the("cmdExit").isEnabled() && busy_.held());
  });
  press("cmdSend");
  EXPECT_EQ(told(), "Unable to send file|There is not enough free flash space on the Kt500 series unit\n");
  for (const char* name : controls) EXPECT_TRUE(the(name).isEnabled()) << name;
  EXPECT_TRUE(form_->isVisible() && box(2).hasFocus() && !busy_.held());
  EXPECT_EQ(status(), "Disconnected");
  EXPECT_EQ(stored_.lastAddresses(), "127.0.0.1:" + std::to_string(sim.port()) + "\n");
  EXPECT_TRUE(the("listAddresses").isVisible());
}

TEST_F(NetloaderTest, AFileIsTypedInEveryFormOfAPath) {
  write("o/a:b.tgz", "12345");
  SimProcess sim("--free 0");
  for (const std::string& typed :
       std::vector<std::string>{"o/a:b.tgz", "c:/o/a:b.tgz", host("o/a:b.tgz"), "\"o\\a:b.tgz\""}) {
    open("C:\\app.tgz", sim.port());
    the<QLineEdit>("txtfile").setText(QString::fromStdString(typed));
    press("cmdSend");
    EXPECT_EQ(the<QLineEdit>("txtfile").text().toStdString(), "C:\\o\\" + platform::holdName("a:b.tgz"))
        << typed;
  }
  sim.end(SIGTERM);
  EXPECT_TRUE(testworld::has(sim.rest(), "request a:b.tgz size 5"));
  person_.told.clear();
  the<QLineEdit>("txtfile").setText("Q:\\x");
  press("cmdSend");
  EXPECT_EQ(told(), "Unable to Send|There is no drive 'Q:'\n");
  EXPECT_TRUE(the("txtfile").hasFocus());
}

TEST_F(NetloaderTest, CancelEscapeAndTheCloseBoxEndATransfer) {
  write("app.tgz", std::string(1'000'000, 'a'));
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"Connected", [this] { press("cmdExit"); }},
      {"Checking..", [this] { QTest::keyClick(form_.get(), Qt::Key_Escape); }},
      {"Sending..", [this] { form_->close(); }}};
  for (const auto& [status, cancel] : cases) {
    log_.all.clear();
    SimProcess sim(std::string(status) == "Sending.." ? "--once" : "--once --silent");
    open("C:\\app.tgz", sim.port());
    when(status, cancel);
    press("cmdSend");
    EXPECT_FALSE(form_->isVisible()) << status;
    EXPECT_EQ(log_.all, " Aborted sending app.tgz to 127.0.0.1\n") << status;
    EXPECT_FALSE(testworld::has(sim.rest(), "stored")) << status;
  }
  EXPECT_EQ(told(), "");
}

TEST_F(NetloaderTest, AFailedTransferClosesTheDialogOnlyOnceTheUnitHadAgreed) {
  SimProcess sim("--once --close-after 0");
  open("C:\\app.tgz", sim.port());
  press("cmdSend");
  EXPECT_FALSE(form_->isVisible());
  open("C:\\app.tgz", sim.port());  // which has ended
  press("cmdSend");
  EXPECT_TRUE(form_->isVisible());
  EXPECT_EQ(told(), "Error #32|Broken pipe\nConnection Error|Unable to connect to remote server\n");
}

TEST_F(NetloaderTest, AddressBoxesAndKeys) {
  stored_.setLastIP("10.20");
  form_ = std::make_unique<frmNetloader>(services(), "C:\\app.tgz");
  form_->show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form_.get()));
  EXPECT_EQ(address(), "10.20..");
  EXPECT_TRUE(box(2).hasFocus());
  box(0).setFocus();
  box(0).selectAll();
  QTest::keyClicks(&box(0), "1924");
  QTest::keyClick(&box(0), Qt::Key_Period);
  EXPECT_EQ(box(0).text(), "192");
  EXPECT_TRUE(box(1).hasFocus());
  EXPECT_EQ(box(1).selectedText(), "20");
  box(1).clear();
  QTest::keyClick(&box(1), Qt::Key_Period, Qt::KeypadModifier);
  EXPECT_EQ(box(1).text(), "0");
  QTest::keyClick(&box(2), Qt::Key_Period);
  EXPECT_TRUE(box(3).hasFocus());
  pressPortKeys(box(1));
  EXPECT_TRUE(the("txtPort").isVisible() && the("lblPort").isVisible());
  pressPortKeys(box(0));
  EXPECT_FALSE(the("txtPort").isVisible());
  fill({"7", "8", "9", "10"});
  QTest::keyClick(form_.get(), Qt::Key_Escape);
  EXPECT_EQ(stored_.lastIP(), "7.8.9.10");
  form_ = std::make_unique<frmNetloader>(services(), "C:\\app.tgz");
  fill({});
  form_->close();
  press("cmdExit");
  EXPECT_EQ(stored_.lastIP(), "7.8.9.10");
}

TEST_F(NetloaderTest, KnownAddressesFillTheBoxesAndAreNamedAndForgotten) {
  stored_.setLastIP("7.8.9.10");
  form_ = std::make_unique<frmNetloader>(services(), "C:\\app.tgz");
  const int without = form_->height();
  stored_.setLastAddresses("1.2.3.4:5142 <b>Lab\n5.6.7.8:80\n5.6.7.8:81\n5.6.7.8:82\n5.6.7.8:83\n");
  form_ = std::make_unique<frmNetloader>(services(), "C:\\app.tgz");
  form_->show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form_.get()));
  tests::checkTexts(*form_);
  auto& list = the<QListView>("listAddresses");
  QAbstractItemModelTester tester(list.model());
  EXPECT_TRUE(the("cmdSend").hasFocus() && form_->height() > without);
  list.setFocus(Qt::TabFocusReason);
  EXPECT_EQ(address(), "7.8.9.10");  // to come by is not to choose
  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_EQ(address() + ":" + the<QLineEdit>("txtPort").text(), "5.6.7.8:80");
  EXPECT_TRUE(the("txtPort").isVisible());
  fill({});
  QTest::keyClick(&list, Qt::Key_Return);
  EXPECT_TRUE(address() == "5.6.7.8" && the("cmdSend").hasFocus());
  tests::leftClick(list.viewport(), list.visualRect(list.model()->index(0, 0)).center());
  EXPECT_EQ(address() + ":" + the<QLineEdit>("txtPort").text(), "1.2.3.4:5142");
  QTest::keyClick(&list, Qt::Key_F2);
  auto* const editor = list.viewport()->findChild<QLineEdit*>();
  EXPECT_EQ(editor->text(), "<b>Lab");
  QTest::keyClicks(editor, "Bench");
  QTest::keyClick(editor, Qt::Key_Return);
  QTRY_COMPARE(list.model()->index(0, 0).data().toString(), "Bench  1.2.3.4");
  EXPECT_TRUE(stored_.lastAddresses().starts_with("1.2.3.4:5142 Bench\n5.6.7.8:80\n"));
  QTest::keyClick(&list, Qt::Key_Delete);
  EXPECT_TRUE(stored_.lastAddresses().starts_with("5.6.7.8:80\n"));
  for (int i = 0; i < 4; ++i) QTest::keyClick(&list, Qt::Key_Delete);
  EXPECT_EQ(stored_.lastAddresses(), "");
  EXPECT_TRUE(!list.isVisible() && form_->height() == without && told().empty());
}

TEST_F(NetloaderTest, AnAddressIsTakenOutOfWhatIsPasted) {
  open("C:\\app.tgz", 5142);
  const auto drop = [](QLineEdit& onto, const QString& text) {
    QMimeData data;
    data.setText(text);
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&onto, &enter);
    QDropEvent event(QPointF(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&onto, &event);
  };
  const auto typed = [](QLineEdit& into, const QString& text) {
    QApplication::clipboard()->setText(text);
    QTest::keyClick(&into, Qt::Key_V, Qt::ControlModifier);
  };
  const auto chosen = [](QLineEdit& into, const QString& text) {
    QApplication::clipboard()->setText(text);
    QMetaObject::invokeMethod(&into, "paste");  // as the context menu does
  };
  const std::function<void(QLineEdit&, const QString&)> ways[] = {typed, chosen, drop};
  auto& port = the<QLineEdit>("txtPort");
  for (const auto& paste : ways)
    for (int i = 0; i < 4; ++i) {
      paste(box(i), " 192.168.1.7/24\n");
      EXPECT_EQ(address(), "192.168.1.7");
      EXPECT_FALSE(port.isVisible());
      paste(box(i), "http://10.0.0.9:80/x");
      EXPECT_EQ(address() + ":" + port.text(), "10.0.0.9:80");
      EXPECT_TRUE(port.isVisible() && the("lblPort").isVisible());
      pressPortKeys(*form_);
      box(i).clear();
      paste(box(i), " 42\n");
      EXPECT_EQ(box(i).text(), "42");
    }
  EXPECT_EQ(QToolTip::text(), "");
  const QString before = address();
  for (const auto& paste : ways)
    for (const char* other : {"1234", "x", "no 1.2.3 address", ""}) {
      paste(box(3), other);
      EXPECT_EQ(address(), before);
      EXPECT_EQ(QToolTip::text(), "There is no IP address in what was pasted") << other;
    }
}

TEST_F(NetloaderTest, HeightsAndLists) {
  const int without = open("C:\\app.tgz").height();
  EXPECT_FALSE(the("framePerms").isVisible());
  write("plain");
  EXPECT_GT(open("C:\\plain").height(), without);
  EXPECT_EQ(the("frameBottom").geometry().bottom(), form_->rect().bottom());
  QString mode;
  for (const char* list : {"listNetP_0", "listNetP_1", "listNetP_2"})
    mode += the<ScrollList>(list).topEntry();
  EXPECT_EQ(mode, "644");
  EXPECT_EQ(the<ScrollList>("listNetP_0").entries().join(' '), "7 6 5 4");
  EXPECT_EQ(the<ScrollList>("listNetP_2").entries().join(' '), "7 6 5 4 3 2 1 0");
}

}  // namespace
