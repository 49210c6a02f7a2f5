#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <random>

#include "download/ui/frmNetloader.h"
#include "platform/desktop/ScrollList.h"
#include "tests/SimProcess.h"
#include "tests/World.h"

namespace {

namespace fs = std::filesystem;
using download::Clock;
using download::frmNetloader;
using platform::desktop::ScrollList;
using platform::desktop::TcpClient;
using platform::desktop::TcpState;
using std::chrono::steady_clock;

/// Time that passes `factor` times as fast.
Clock hurried(int factor) {
  return [start = steady_clock::now(), factor] { return start + (steady_clock::now() - start) * factor; };
}

/// An address that nothing answers from.
struct Unreachable : TcpClient {
  void connectTo(const QString&, const QString&) override { now = TcpState::Connecting; }
  bool send(std::string_view) override { return false; }
  std::string receive() override { return {}; }
  void close() override { now = TcpState::Closed; }
  TcpState state() const override { return now; }
  std::int64_t unsent() override { return -1; }
  platform::desktop::TcpError error() const override { return {}; }
  TcpState now = TcpState::Closed;
};

class NetloaderTest : public testworld::World {
 protected:
  NetloaderTest() {
    findTools();
    random(1500, "app.tgz");
  }
  void random(std::size_t size, const std::string& name) {
    std::mt19937 numbers(static_cast<unsigned>(size));
    std::string text(size, '\0');
    for (char& c : text) c = static_cast<char>(numbers());
    write(name, text);
  }
  frmNetloader& open(const std::string& path, std::uint16_t port = 1, Clock now = steady_clock::now,
                     std::unique_ptr<TcpClient> client = nullptr) {
    if (client == nullptr) client = std::make_unique<platform::desktop::DesktopTcpClient>();
    form_ = std::make_unique<frmNetloader>(services(), path, std::move(client), std::move(now));
    form_->show();
    const char* const loopback[] = {"127", "0", "0", "1"};
    for (int i = 0; i < 4; ++i) the<QLineEdit>(("txtIP_" + std::to_string(i)).c_str()).setText(loopback[i]);
    the<QLineEdit>("txtPort").setText(QString::number(port));
    return *form_;
  }
  template <typename Control>
  Control& the(const char* name) {
    auto* const control = form_->findChild<Control*>(name);
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  void press(const char* name) { the<QPushButton>(name).click(); }
  QString status() { return the<QLabel>("lblStatus").text(); }
  bool waitUntil(const std::function<bool()>& done, int most = 20000) { return QTest::qWaitFor(done, most); }
  bool waitUntilGone() {
    return waitUntil([this] { return !form_->isVisible(); });
  }
  /// Sends to a simulator that ends after one connection; its events.
  std::string sendTo(const std::string& options, const std::string& path = "C:\\app.tgz",
                     Clock now = steady_clock::now) {
    SimProcess sim("--once " + options);
    open(path, sim.port(), std::move(now));
    press("cmdSend");
    waitUntil([this] { return !form_->isVisible() || !person_.told.empty(); });
    waitUntil([this] { return !form_->isVisible(); }, 300);
    form_->close();
    return sim.rest();
  }
  /// For a person to look at, where SCREENSHOTS names a folder.
  void takePicture(const char* name) {
    if (const char* folder = getenv("SCREENSHOTS"))
      form_->grab().save(QString("%1/%2.png").arg(folder, name));
  }
  std::string told() const {
    std::string all;
    for (const std::string& text : person_.told) all += text + "\n";
    return all;
  }

  std::unique_ptr<frmNetloader> form_;
};

const char* const sentBox = "Send Complete|File Successfully Sent!\n";

TEST_F(NetloaderTest, EverySizeArrivesByteForByte) {
  for (const std::size_t size : {0UL, 1UL, 999UL, 1000UL, 1001UL, 20480UL, 5'000'000UL}) {
    person_.told.clear();
    log_.all.clear();
    random(size, "my app.tgz");
    SimProcess sim("--once --split-reply --reply OKOK");
    open("C:\\my app.tgz", sim.port());
    const auto start = steady_clock::now();
    press("cmdSend");
    ASSERT_TRUE(waitUntilGone()) << size;
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(12)) << size;
    EXPECT_EQ(told(), sentBox) << size;
    EXPECT_EQ(log_.all, " Successfully sent my app.tgz to 127.0.0.1\n") << size;
    form_.reset();
    const std::string events = sim.rest();
    EXPECT_NE(
        events.find("request my_app.tgz size " + std::to_string(size) + " mode 400 owner usr1 group users"),
        std::string::npos)
        << events;
    std::ifstream file(sim.root() + "/my_app.tgz", std::ios::binary);
    EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(file), {}) == bytes("my app.tgz")) << size;
  }
}

TEST_F(NetloaderTest, APlainFileIsSentWithItsModeAndTheOwnerAtTheTop) {
  write("run.sh", std::string(1234, 'r'));
  fs::permissions(host("run.sh"), fs::perms(0751));
  fs::create_symlink("run.sh", host("link"));
  SimProcess sim("--count 2");
  for (const char* path : {"C:\\run.sh", "C:\\link"}) {
    open(path, sim.port());
    EXPECT_TRUE(the<QCheckBox>("checkOR").isChecked() && !the<QCheckBox>("checkOR").isEnabled());
    EXPECT_FALSE(the<QCheckBox>("checkER").isChecked());
    the<QCheckBox>("checkEW").setChecked(true);
    the<ScrollList>("listNetO").setTopIndex(2);
    press("cmdSend");
    ASSERT_TRUE(waitUntilGone());
  }
  const std::string events = sim.rest();
  EXPECT_NE(events.find("request run.sh size 1234 mode 753 owner usr3"), std::string::npos) << events;
  EXPECT_NE(events.find("request link size 1234 mode 753 owner usr3"), std::string::npos) << events;
  EXPECT_EQ(told(), std::string(sentBox) + sentBox);
}

TEST_F(NetloaderTest, RefusalsAndFaultsAreToldAndNeverASuccess) {
  random(200'000, "big.tgz");
  struct Case {
    const char* options;
    const char* path;
    const char* told;
  };
  const Case cases[] = {
      {"--free 10", "C:\\app.tgz",
       "Unable to send file|There is not enough free flash space on the Kt500 series unit\n"},
      {"--reply BADARGS!", "C:\\app.tgz", "Unable to send file|Bad arguments in the command packet\n"},
      {"--reply ok", "C:\\app.tgz", "Unable to send file|Send file request failed\n"},
      {"--silent", "C:\\app.tgz", "Unable to send file|Send file request failed\n"},
      {"--close-after 0", "C:\\big.tgz", "Error #32|Broken pipe\n"}};
  for (const Case& c : cases) {
    person_.told.clear();
    const std::string events = sendTo(c.options, c.path);
    EXPECT_EQ(told(), c.told) << c.options << "\n" << events;
    EXPECT_EQ(events.find("stored"), std::string::npos) << events;
    EXPECT_EQ(log_.all, "") << c.options;
  }
  for (const auto& [after, path] : {std::pair("1000", "C:\\app.tgz"), std::pair("100000", "C:\\big.tgz")}) {
    person_.told.clear();
    sendTo(std::string("--close-after ") + after, path);
    ASSERT_EQ(person_.told.size(), 1U);
    EXPECT_EQ(person_.told[0].substr(0, 7), "Error #") << told();
    EXPECT_EQ(log_.all, "");
  }
}

TEST_F(NetloaderTest, AUnitThatStopsReadingIsLostAfterTwentySeconds) {
  random(400'000, "big.tgz");
  sendTo("--read-rate 0", "C:\\big.tgz", hurried(10));
  EXPECT_EQ(told(), "Unable to send|Send Request Timed Out\rConnection to Unit Lost\n");
  person_.told.clear();
  random(40'000, "big.tgz");  // all handed over, but not taken
  sendTo("--read-rate 0", "C:\\big.tgz", hurried(10));
  EXPECT_EQ(told(), "Unable to send|Send Request Timed Out\rConnection to Unit Lost\n");
  EXPECT_EQ(log_.all, "");
}

TEST_F(NetloaderTest, NoConnection) {
  std::uint16_t port = 0;
  { port = SimProcess().port(); }
  open("C:\\app.tgz", port);
  press("cmdSend");
  EXPECT_EQ(told(), "Connection Error|Unable to connect to remote server\n");
  EXPECT_EQ(log_.all, " Unable to connect to 127.0.0.1\n");
  EXPECT_TRUE(form_->isVisible() && the<QPushButton>("cmdSend").isEnabled());
  the<QLineEdit>("txtPort").setText("x");
  press("cmdSend");
  EXPECT_EQ(person_.told.size(), 2U);

  open("C:\\app.tgz", 1, hurried(100), std::make_unique<Unreachable>());
  const auto start = steady_clock::now();
  press("cmdSend");
  EXPECT_GE(steady_clock::now() - start,
            std::chrono::milliseconds(195));  // 20 seconds a hundred times as fast
  EXPECT_EQ(person_.told.size(), 3U);
  EXPECT_EQ(status(), "Disconnected");
}

TEST_F(NetloaderTest, CancelInEveryState) {
  const char* const aborted = " Aborted sending app.tgz to 127.0.0.1\n";
  open("C:\\app.tgz", 1, steady_clock::now, std::make_unique<Unreachable>());
  QTimer::singleShot(50, [this] { press("cmdExit"); });
  press("cmdSend");
  EXPECT_FALSE(form_->isVisible());
  EXPECT_EQ(log_.all, aborted);

  random(1'000'000, "app.tgz");
  for (const char* state : {"Connected", "Checking..", "Sending.."}) {
    log_.all.clear();
    SimProcess sim(std::string(state) == "Sending.." ? "--once" : "--once --silent");
    open("C:\\app.tgz", sim.port());
    QTimer poll;
    bool pressed = false;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      const bool started = std::string(state) != "Sending.." || the<QProgressBar>("ProgBar").value() > 0;
      if (pressed || status() != state || !started) return;
      pressed = true;
      QTest::keyClick(form_.get(), Qt::Key_Escape);
    });
    poll.start(10);
    press("cmdSend");
    EXPECT_TRUE(waitUntilGone()) << state;
    EXPECT_EQ(log_.all, aborted) << state;
    form_.reset();
    EXPECT_EQ(sim.rest().find("stored"), std::string::npos) << state;
  }
  open("C:\\app.tgz").close();
  EXPECT_FALSE(form_->isVisible());
  EXPECT_EQ(told(), "");
}

TEST_F(NetloaderTest, AFileThatChangesIsNeverASuccess) {
  for (const std::size_t size : {1400UL, 1600UL}) {
    person_.told.clear();
    log_.all.clear();
    random(1500, "app.tgz");
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      if (form_ != nullptr && status() == "Checking..") fs::resize_file(host("app.tgz"), size);
    });
    poll.start(10);
    const std::string events = sendTo("--delay 500");
    EXPECT_EQ(told(), "Unable to send file|The file was changed while it was being sent\n");
    EXPECT_EQ(log_.all, " FAILED to send app.tgz to 127.0.0.1\n");
    EXPECT_EQ(events.find("stored"), std::string::npos) << events;
  }
}

TEST_F(NetloaderTest, InputIsChecked) {
  open("C:\\gone.tgz");
  press("cmdSend");
  the<QLineEdit>("txtfile").setText("C:\\app.tgz");
  the<QLineEdit>("txtIP_3").clear();
  press("cmdSend");
  the<QLineEdit>("txtIP_3").setText("1");
  the<QLineEdit>("txtPort").clear();
  press("cmdSend");
  EXPECT_EQ(told(),
            "Unable to Send|Please Select A Valid File to Send\n"
            "Unable to Send|Please Enter A Valid Destination IP Address\n"
            "Unable to Send|Please Enter A Valid Destination Port\n");
}

TEST_F(NetloaderTest, AddressBoxesAndKeys) {
  stored_.setLastIP("10.20");
  form_ = std::make_unique<frmNetloader>(services(), "C:\\app.tgz");
  form_->show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form_.get()));
  auto& first = the<QLineEdit>("txtIP_0");
  auto& second = the<QLineEdit>("txtIP_1");
  EXPECT_EQ(first.text() + "|" + second.text() + "|" + the<QLineEdit>("txtIP_2").text(), "10|20|");
  first.setFocus();
  first.selectAll();
  QTest::keyClicks(&first, "1924");
  QTest::keyClick(&first, Qt::Key_Period);
  EXPECT_EQ(first.text(), "192");
  EXPECT_TRUE(second.hasFocus());
  EXPECT_EQ(second.selectedText(), "20");
  second.clear();
  QTest::keyClick(&second, Qt::Key_Period, Qt::KeypadModifier);
  EXPECT_EQ(second.text(), "0");
  QApplication::clipboard()->setText(" 192.168.1.7\n");
  first.home(false);
  QTest::keyClicks(&first, "5");
  EXPECT_EQ(first.text(), "192");  // full
  first.setText("1");
  first.home(false);
  first.paste();
  EXPECT_FALSE(the<QLineEdit>("txtPort").isVisible());
  QTest::keyClick(&second, Qt::Key_F10, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(the<QLineEdit>("txtPort").isVisible() && the<QLabel>("lblPort").isVisible());
  QTest::keyClick(&first, Qt::Key_F10, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_FALSE(the<QLineEdit>("txtPort").isVisible());
  QTest::keyClick(form_.get(), Qt::Key_Escape);
  EXPECT_EQ(stored_.lastIP(), "192.168.1.7");
  form_ = std::make_unique<frmNetloader>(services(), "C:\\app.tgz");
  for (const char* box : {"txtIP_0", "txtIP_1", "txtIP_2", "txtIP_3"}) the<QLineEdit>(box).clear();
  form_->close();
  press("cmdExit");
  EXPECT_EQ(stored_.lastIP(), "192.168.1.7");
}

TEST_F(NetloaderTest, HeightsAndLists) {
  const auto height = [this](const char* path) {
    const frmNetloader& form = open(path);
    return form.height() * 1440 / form.logicalDpiY();
  };
  EXPECT_GE(height("C:\\app.tgz"), 3195);
  EXPECT_FALSE(the<QWidget>("framePerms").isVisible());
  QTest::keyClick(form_.get(), Qt::Key_F10, Qt::ControlModifier | Qt::ShiftModifier);
  takePicture("archive");
  write("plain");
  EXPECT_GE(height("C:\\plain"), 5340);
  const auto& bottom = the<QWidget>("frameBottom");
  EXPECT_EQ(bottom.geometry().bottom(), form_->rect().bottom());
  EXPECT_GE(bottom.height() * 1440 / form_->logicalDpiY(), 465);
  EXPECT_EQ(the<ScrollList>("listNetP_0").topEntry() + the<ScrollList>("listNetP_1").topEntry() +
                the<ScrollList>("listNetP_2").topEntry(),
            "644");
  takePicture("plain");
}

}  // namespace
