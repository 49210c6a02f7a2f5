#include <algorithm>
#include <random>

#include "download/SendJob.h"
#include "platform/TcpConnection.h"
#include "tests/SimProcess.h"
#include "tests/World.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::ConnectionState;
using runtime::JobEnd;
using std::chrono::steady_clock;
using testworld::has;

/// A unit that does what a test wants, at the times of its clock.
class FakeUnit : public platform::Connection {
 public:
  void connectTo(const std::string& host, const std::string& port) override {
    calls += "connect " + host + ":" + port + "\n";
    now = ConnectionState::Connecting;
  }
  ConnectionState look() override {
    ++looks;
    if (now == ConnectionState::Connecting && answers) now = ConnectionState::Connected;
    if (now != ConnectionState::Closed && onLook) onLook();
    return now;
  }
  ConnectionState state() const override { return now; }
  bool send(std::string_view bytes) override {
    if (now != ConnectionState::Connected) return false;
    sent.append(bytes);
    chunks.push_back(bytes.size());
    held += static_cast<std::int64_t>(takesAtOnce ? 0 : bytes.size());
    if (chunks.size() == 1) arrived += reply;
    return true;
  }
  bool sendComplete() const override { return now != ConnectionState::Closed && held <= systemHolds; }
  void finishSending() override { calls += "finish\n"; }
  std::int64_t unsent() override { return now == ConnectionState::Closed ? -1 : held; }
  std::string receive() override { return std::exchange(arrived, {}); }
  void close() override {
    if (now != ConnectionState::Closed) calls += "close\n";
    now = ConnectionState::Closed;
  }
  platform::ConnectionError error() const override { return {104, "Connection reset by peer"}; }
  std::string data() const { return sent.substr(chunks.empty() ? 0 : chunks[0]); }

  ConnectionState now = ConnectionState::Closed;
  bool answers = true, takesAtOnce = true;
  std::int64_t systemHolds = 0, held = 0;
  std::string reply = "OK", arrived, sent, calls;
  std::function<void()> onLook;
  std::vector<std::size_t> chunks;
  int looks = 0;
};

/// What was shown, in order; time passes as it waits.
class Display : public download::SendDisplay {
 public:
  void showStatus(const char* text) override { shown += text + "|"s; }
  void showPercent(int value) override { percents.push_back(value); }
  void showTimeLeft(bool visible) override { shown += visible ? "+left|" : "-left|"; }
  void setTimeLeft(std::uint64_t seconds) override { shown += std::to_string(seconds) + " s|"; }
  void wait(std::chrono::nanoseconds nap) override {
    if (real) usleep(static_cast<useconds_t>(nap.count() / 1000));
    time += std::max<std::chrono::nanoseconds>(nap, 100us);
    if (onWait) onWait();
  }
  bool real = false;
  std::function<void()> onWait;
  steady_clock::time_point time;
  std::string shown;
  std::vector<int> percents;
};

class SendTest : public testworld::World {
 protected:
  SendTest() { random(2500, "app.tgz"); }
  void random(std::size_t size, const std::string& name) {
    std::mt19937 numbers(static_cast<unsigned>(size));
    std::string text(size, '\0');
    std::generate(text.begin(), text.end(), [&] { return static_cast<char>(numbers()); });
    write(name, text);
  }
  download::SendResult run(platform::Connection& connection, download::Clock clock) {
    const platform::Busy::Scope busy(busy_);
    return download::SendJob(services(), order_, connection, display_, std::move(clock)).run();
  }
  JobEnd run() {
    const auto start = display_.time;
    const JobEnd end = run(unit_, [this] { return display_.time; }).end;
    took_ = display_.time - start;
    return end;
  }
  /// A new unit, to which nothing was shown yet.
  void fresh() {
    unit_ = {};
    display_.shown.clear();
  }
  /// When the display's texts end so.
  std::function<bool()> shows(const char* end) {
    return [this, end] { return display_.shown.ends_with(end); };
  }
  /// When so many chunks were given to the unit, the request counted.
  std::function<bool()> chunks(std::size_t count) {
    return [this, count] { return unit_.chunks.size() == count; };
  }
  std::function<bool()> finished() {
    return [this] { return unit_.calls.ends_with("finish\n"); };
  }
  /// Sends to a simulator over real sockets, at `factor` times the speed of time; its events.
  std::string runReal(const std::string& options, int factor = 1) {
    SimProcess sim("--once " + options);
    order_.port = std::to_string(sim.port());
    platform::TcpConnection connection;
    display_.real = true;
    const auto start = steady_clock::now();
    result_ = run(connection, [=] { return start + (steady_clock::now() - start) * factor; });
    return sim.rest();
  }
  /// All that was told and logged since the last call.
  std::string told() {
    std::string all;
    for (const std::string& text : std::exchange(person_.told, {})) all += text + "\n";
    return all + std::exchange(log_.all, {});
  }
  /// Something that happens once, when `due` says so.
  void once(std::function<bool()> due, std::function<void()> deed) {
    display_.onWait = [due = std::move(due), deed = std::move(deed), done = false]() mutable {
      if (!done && due()) {
        done = true;
        deed();
      }
    };
  }

  FakeUnit unit_;
  Display display_;
  download::SendOrder order_{"C:\\app.tgz", {"10", "0", "0", "1"}, "5142", download::archiveMode, "usr1"};
  steady_clock::duration took_{};
  download::SendResult result_;
};

const char* const sent = "Send Complete|File Successfully Sent!\n Successfully sent app.tgz to 10.0.0.1\n";
const char* const aborted = " Aborted sending app.tgz to 10.0.0.1\n";
const char* const requestFailed = "Unable to send file|Send file request failed\n";
const char* const noSpace =
    "Unable to send file|There is not enough free flash space on the Kt500 series unit\n";
const char* const lost = "Unable to send|Send Request Timed Out\rConnection to Unit Lost\n";
const char* const changed =
    "Unable to send file|The file was changed while it was being sent\n FAILED to send app.tgz to 10.0.0.1\n";

TEST_F(SendTest, AWholeTransferInItsOrder) {
  unit_.onLook = [this] {
    if (unit_.calls.ends_with("finish\n")) unit_.now = ConnectionState::Closing;
  };
  EXPECT_EQ(run(), JobEnd::Done);
  EXPECT_EQ(told(), sent);
  EXPECT_EQ(unit_.calls, "connect 10.0.0.1:5142\nfinish\n");
  const std::string request = requestOf({"DLD:app.tgz", "2500", "400", "usr1", "users"});
  EXPECT_TRUE(unit_.sent == request + bytes("app.tgz"));
  EXPECT_EQ(unit_.chunks, (std::vector<std::size_t>{request.size(), 1000, 1000, 500}));
  EXPECT_EQ(display_.shown, "Connecting..|Connected|Checking..|Connected|+left|Sending..|");
  EXPECT_EQ(std::vector<int>(display_.percents.end() - 3, display_.percents.end()),
            (std::vector<int>{40, 80, 100}));
  EXPECT_GE(took_, 403ms);  // two pauses, and one between chunks
  EXPECT_LT(took_, 420ms);
}

TEST_F(SendTest, InputIsCheckedInItsOrderAndNothingIsBegun) {
  order_ = {"C:\\gone", {"10", "", "0", "1"}, "", {}, ""};
  EXPECT_EQ(run(), JobEnd::Refused);
  order_.path = "C:\\app.tgz";
  run();
  order_.address[1] = "0";
  run();
  EXPECT_EQ(told(),
            "Unable to Send|Please Select A Valid File to Send\n"
            "Unable to Send|Please Enter A Valid Destination IP Address\n"
            "Unable to Send|Please Enter A Valid Destination Port\n");
  EXPECT_EQ(display_.shown + unit_.calls, "");
}

TEST_F(SendTest, AUnitThatCannotBeReached) {
  unit_.answers = false;
  EXPECT_EQ(run(), JobEnd::Failed);
  EXPECT_EQ(told(), "Connection Error|Unable to connect to remote server\n Unable to connect to 10.0.0.1\n");
  EXPECT_GE(took_, 20s);
  EXPECT_LT(took_, 21s);
  EXPECT_EQ(display_.shown, "Connecting..|-left|Disconnected|");
  EXPECT_EQ(display_.percents[display_.percents.size() / 2] / 10, 5);
}

TEST_F(SendTest, RepliesThatSendNothing) {
  const char* const badArguments = "Unable to send file|Bad arguments in the command packet\n";
  for (const auto& [reply, said] : {std::pair("NOSPACE\r\n", noSpace),
                                    {"BADARGS!", badArguments},
                                    {"ok", requestFailed},
                                    {"O", requestFailed},
                                    {"", requestFailed}}) {
    const auto lasts = said == requestFailed ? 5s : 0s;
    fresh();
    unit_.reply = reply;
    EXPECT_EQ(run(), JobEnd::Failed);
    EXPECT_EQ(told(), said) << reply;
    EXPECT_EQ(unit_.data(), "") << reply;
    EXPECT_TRUE(took_ >= 200ms + lasts && took_ < 400ms + lasts) << reply;
    EXPECT_TRUE(unit_.calls.ends_with("close\n") && display_.shown.ends_with("-left|Disconnected|"));
    EXPECT_LT(display_.shown.size(), 90U) << display_.shown;  // each change once
  }
  fresh();
  unit_.reply = "";
  person_.onMessage = [this] { unit_.arrived = "OK"; };  // an OK that comes too late
  EXPECT_EQ(run(), JobEnd::Failed);
  EXPECT_EQ(told(), requestFailed);
  EXPECT_EQ(unit_.data(), "");
}

TEST_F(SendTest, AUnitThatClosesOrResets) {
  const auto now = [this](ConnectionState state) { return [this, state] { unit_.now = state; }; };
  const std::string reset = "Error #104|Connection reset by peer\n";
  using Case = std::tuple<std::string, std::function<bool()>, std::string>;
  for (const auto& [when, due, said] :
       {Case{"before the request", [this] { return unit_.now == ConnectionState::Connected; }, reset},
        Case{"before the reply", chunks(1), requestFailed}, Case{"in the middle", chunks(2), reset},
        Case{"after the last byte", finished(), reset}})
    for (const auto state : {ConnectionState::Closed, ConnectionState::Closing}) {
      const bool inOrder = state == ConnectionState::Closing && when == "after the last byte";
      unit_ = {};
      if (said == requestFailed) unit_.reply = "";
      once(due, now(state));
      EXPECT_EQ(run(), inOrder ? JobEnd::Done : JobEnd::Failed) << when;
      EXPECT_EQ(told(), inOrder ? sent : said) << when;
      EXPECT_EQ(took_ >= 5s, said == requestFailed) << when;
    }
  fresh();
  once(shows("Checking..|Connected|"), now(ConnectionState::Closed));
  run();
  EXPECT_EQ(told(), reset);
  EXPECT_FALSE(has(display_.shown, "Sending"));  // so that the dialog stays for another try
}

TEST_F(SendTest, ASlowUnitLivesAndADeadOneIsLostAfterTwentySeconds) {
  for (const std::int64_t kept : {0, 3000})  // the bytes wait here, or the system holds them all
    for (const bool slow : {true, false}) {
      unit_ = {};
      unit_.takesAtOnce = false;
      unit_.systemHolds = kept;
      unit_.onLook = [this, slow, next = display_.time + 15s]() mutable {
        if (unit_.chunks.size() == 1) unit_.held = 0;
        if (!slow || display_.time < next) return;
        next = display_.time + 15s;
        unit_.held = std::max<std::int64_t>(unit_.held - 300, 0);
      };
      EXPECT_EQ(run(), slow ? JobEnd::Done : JobEnd::Failed) << kept;
      EXPECT_EQ(told(), slow ? sent : lost);
      EXPECT_TRUE(slow ? took_ > 100s : took_ > 20s && took_ < 21s);
    }
}

TEST_F(SendTest, TheEndIsAwaitedForTwoSecondsAndTheTimeLeftIsThatOfTheLastSecond) {
  random(3'000'000, "app.tgz");
  EXPECT_EQ(run(), JobEnd::Done);
  EXPECT_GE(took_, 400ms + 3000ms + 2s);
  EXPECT_LT(took_, 400ms + 3000ms + 2100ms);
  EXPECT_TRUE(has(display_.shown, "Sending..|2 s|1 s|"));
}

TEST_F(SendTest, AStopAtEveryStepIsOneLine) {
  using Case = std::tuple<std::string, std::function<bool()>>;
  for (const auto& [when, due] :
       {Case{"connecting", shows("Connecting..|")}, Case{"connected", shows("Connecting..|Connected|")},
        Case{"checking", shows("Checking..|")},
        Case{"disconnected by an unknown reply", shows("Disconnected|")}, Case{"sending", chunks(2)},
        Case{"a chunk waits", [this] { return unit_.held > 0; }}, Case{"the end is awaited", finished()}}) {
    SCOPED_TRACE(when);
    const bool refused = when.starts_with("disconnected");
    fresh();
    unit_.answers = when != "connecting";
    if (when == "checking") unit_.reply = "";
    if (refused) unit_.reply = "ok";
    if (when == "a chunk waits") unit_.onLook = [this] { unit_.takesAtOnce = unit_.chunks.size() < 2; };
    std::size_t given = 0;
    int looks = 0;
    once(due, [&] {
      busy_.requestStop();
      given = unit_.chunks.size();
      looks = unit_.looks;
    });
    EXPECT_EQ(run(), JobEnd::Stopped);
    EXPECT_EQ(told(), refused ? "" : aborted);
    EXPECT_EQ(unit_.chunks.size(), given);
    EXPECT_LE(unit_.looks, looks + 1);
    EXPECT_EQ(unit_.now, ConnectionState::Closed);
  }
  fresh();
  busy_.requestEnd();
  EXPECT_EQ(run(), JobEnd::Stopped);
  EXPECT_EQ(display_.shown + unit_.calls + told(), "");
}

TEST_F(SendTest, AFileThatChangesIsNeverASuccess) {
  const std::function<void()> changes[] = {[&] { fs::resize_file(host("app.tgz"), 2400); },
                                           [&] { fs::resize_file(host("app.tgz"), 2600); },
                                           [&] { write("app.tgz", std::string(2500, 's')); }};
  for (const auto& change : changes) {
    unit_ = {};
    random(2500, "app.tgz");
    usleep(20'000);  // the clock of files is coarse
    once(chunks(2), change);
    EXPECT_EQ(run(), JobEnd::Failed);
    EXPECT_EQ(told(), changed);
    EXPECT_LT(unit_.data().size(), 2500U);  // what the unit has is no whole file
  }
  unit_ = {};
  write("app.tgz", "");
  once(chunks(1), [this] { write("app.tgz", "no longer empty"); });
  EXPECT_EQ(run(), JobEnd::Failed);
  EXPECT_EQ(told(), changed);
  unit_ = {};
  once(chunks(1), [this] { fs::rename(host("app.tgz"), host("b")); });
  EXPECT_EQ(run(), JobEnd::Done);
}

TEST_F(SendTest, RealConnections) {
  order_.address = {"127", "0", "0", "001"};  // octets are decimal
  for (const std::size_t size : {0UL, 1UL, 999UL, 1001UL, 300'000UL}) {
    random(size, "app.tgz");
    const auto start = steady_clock::now();
    const std::string events = runReal("--split-reply --reply OKOK");
    EXPECT_LT(steady_clock::now() - start, 1900ms) << size;  // the unit's close ends it
    EXPECT_EQ(result_.end, JobEnd::Done) << told() << events;
    EXPECT_TRUE(has(events, "received " + std::to_string(size) + " bytes\nstored"));
  }
  told();
  using Case = std::tuple<const char*, std::size_t, const char*, int>;
  for (const auto& [options, size, said, factor] :
       {Case{"--reply ok", 1500, requestFailed, 10}, Case{"--silent --timeout 100", 1500, requestFailed, 10},
        Case{"--close-after 0", 200'000, "Error #32|Broken pipe\n", 1},
        Case{"--close-after 1000", 1500, "Error #", 1}, Case{"--read-rate 0", 400'000, lost, 20},
        Case{"--read-rate 0", 40'000, lost, 20}, Case{"--free 10", 1500, noSpace, 1}}) {
    random(size, "app.tgz");
    const std::string events = runReal(options, factor);
    EXPECT_EQ(result_.end, JobEnd::Failed) << options;
    const std::string text = told();
    EXPECT_TRUE(text.starts_with(said)) << options << "\n" << text << events;
    EXPECT_FALSE(has(events, "stored")) << events;
  }
}

TEST_F(SendTest, HostsAndPorts) {
  order_.address = {"127", "0", "0", "1"};
  { order_.port = std::to_string(SimProcess().port()); }
  const auto errorOf = [](const std::string& host, const std::string& port) {
    platform::TcpConnection connection;
    connection.connectTo(host, port);
    while (connection.look() == ConnectionState::Connecting) usleep(1000);
    return connection.error().number;
  };
  EXPECT_EQ(errorOf("127.0.0.1", order_.port), ECONNREFUSED);
  EXPECT_EQ(errorOf("localhost", order_.port), ECONNREFUSED);
  EXPECT_EQ(errorOf("no.host.invalid", "80"), EHOSTUNREACH);
  for (const char* host : {"127.0.0.256", "127.0.0", "127.0.0.1.1", "127..0.1", "..."})
    EXPECT_EQ(errorOf(host, order_.port), EINVAL) << host;
  for (const char* port : {"x", "0", "65536", "80 x", "-1"})
    EXPECT_EQ(errorOf("127.0.0.1", port), EINVAL) << port;
}

}  // namespace
