#include <netdb.h>

#include <algorithm>
#include <random>

#include "download/SendJob.h"
#include "platform/TcpConnection.h"
#include "tests/SimProcess.h"
#include "tests/World.h"

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using enum platform::ConnectionState;
using enum runtime::JobEnd;
using std::chrono::steady_clock;
using testworld::has;

/// A unit that does what a test wants, and whoever watches the transfer: `all` is what happened, in its
/// order. Time passes as it is waited.
class Stage : public platform::Connection, public download::SendDisplay {
 public:
  void connectTo(const std::string& host, const std::string& port) override {
    all += "connect " + host + ":" + port + "|";
    now = Connecting;
  }
  platform::ConnectionState look() override {
    if (now == Connecting && reply != "-") now = Connected;
    if (onLook) onLook();
    return now;
  }
  platform::ConnectionState state() const override { return now; }
  bool send(std::string_view bytes) override {
    if (now != Connected) return false;
    const bool asks = std::exchange(request, request.empty() ? bytes : request).empty();
    all += asks ? "ask|" : "send " + std::to_string(bytes.size()) + "|";
    if (asks) arrived += reply;
    if (asks) return true;
    data.append(bytes);
    held += static_cast<std::int64_t>(takes ? 0 : bytes.size());
    return true;
  }
  bool sendComplete() const override { return now != Closed && held <= systemHolds; }
  void finishSending() override { all += "finish|"; }
  std::int64_t unsent() override { return now == Closed ? -1 : held; }
  std::string receive() override { return std::exchange(arrived, {}); }
  void close() override { now = Closed; }
  platform::ConnectionError error() const override { return {error_, "words"}; }

  void showStatus(const char* text) override { all += text + "|"s; }
  void showPercent(int value) override { percents.push_back(value); }
  void showTimeLeft(bool visible) override { all += visible ? "+left|" : "-left|"; }
  void setTimeLeft(std::uint64_t seconds) override { all += std::to_string(seconds) + " s|"; }
  void wait(std::chrono::nanoseconds nap) override {
    if (real) usleep(static_cast<useconds_t>(nap.count() / 1000));
    time += std::max<std::chrono::nanoseconds>(nap, 100us);
    if (!deed || !all.ends_with(due)) return;
    std::exchange(deed, {})();
  }

  std::string reply = "OK", arrived, request, data, all;  // the reply "-": it is not reached
  std::string due;                                        // how `all` ends when the deed is done
  std::function<void()> deed, onLook;
  platform::ConnectionState now = Closed;
  bool takes = true, real = false;
  std::int64_t systemHolds = 0, held = 0;
  int error_ = 0;
  std::vector<int> percents;
  steady_clock::time_point time;
};

class SendTest : public testworld::World {
 protected:
  SendTest() { fresh(); }
  void random(std::size_t size) {
    std::mt19937 numbers(static_cast<unsigned>(size));
    std::string text(size, '\0');
    std::generate(text.begin(), text.end(), [&] { return static_cast<char>(numbers()); });
    write("app.tgz", text);
  }
  void fresh(const std::string& due = "", std::function<void()> deed = {}) {
    random(2500);
    unit_ = {};
    unit_.due = due;
    unit_.deed = std::move(deed);
  }
  runtime::JobEnd run(platform::Connection& connection, download::Clock clock) {
    const platform::Busy::Scope busy(busy_);
    return download::SendJob(services(), order_, connection, unit_, std::move(clock)).run().end;
  }
  runtime::JobEnd run() {
    const runtime::JobEnd end = run(unit_, [this] { return unit_.time; });
    took_ = unit_.time - steady_clock::time_point();
    return end;
  }
  /// Sends to a simulator over real sockets, at `factor` times the speed of time; its events.
  std::string runReal(const std::string& options, runtime::JobEnd end, int factor = 1) {
    SimProcess sim("--once " + options);
    order_.port = std::to_string(sim.port());
    platform::TcpConnection connection;
    unit_.real = true;
    const auto start = steady_clock::now();
    EXPECT_EQ(run(connection, [=] { return start + (steady_clock::now() - start) * factor; }), end)
        << options;
    took_ = steady_clock::now() - start;
    return sim.rest();
  }
  /// All that was told and logged since the last call.
  std::string told() {
    std::string all;
    for (const std::string& text : std::exchange(person_.told, {})) all += text + "\n";
    return all + std::exchange(log_.all, {});
  }

  Stage unit_;
  download::SendOrder order_{"C:\\app.tgz", {"10", "0", "0", "1"}, "5142", download::archiveMode, "usr1"};
  steady_clock::duration took_{};
};

const char* const sent = "Send Complete|File Successfully Sent!\n Successfully sent app.tgz to 10.0.0.1\n";
const char* const lost = "Unable to send|Send Request Timed Out\rConnection to Unit Lost\n";

TEST_F(SendTest, AWholeTransferInItsOrder) {
  fresh("finish|", [this] { unit_.now = Closing; });
  EXPECT_EQ(run(), Done);
  EXPECT_EQ(told(), sent);
  EXPECT_EQ(unit_.all,
            "Connecting..|connect 10.0.0.1:5142|Connected|Checking..|ask|Connected|+left|Sending..|"
            "send 1000|send 1000|send 500|finish|");
  EXPECT_EQ(unit_.request, requestOf({"DLD:app.tgz", "2500", "400", "usr1", "users"}));
  EXPECT_TRUE(unit_.data == bytes("app.tgz"));
  EXPECT_EQ(std::vector<int>(unit_.percents.end() - 3, unit_.percents.end()),
            (std::vector<int>{40, 80, 100}));
  EXPECT_TRUE(took_ >= 403ms && took_ < 420ms);  // two pauses, and one between chunks
}

TEST_F(SendTest, InputIsCheckedInItsOrderAndNothingIsBegun) {
  order_ = {"C:\\gone", {"10", "", "0", "1"}, "", {}, ""};
  EXPECT_EQ(run(), Refused);
  order_.path = "C:\\app.tgz";
  run();
  order_.address[1] = "0";
  run();
  EXPECT_EQ(told(),
            "Unable to Send|Please Select A Valid File to Send\n"
            "Unable to Send|Please Enter A Valid Destination IP Address\n"
            "Unable to Send|Please Enter A Valid Destination Port\n");
  EXPECT_EQ(unit_.all, "");
}

TEST_F(SendTest, WhateverHappensIsToldOnceAndExplained) {
  struct Case {
    std::string reply, due;
    std::function<void()> deed;
    std::string told, explained;
    steady_clock::duration lasts = 0s;
    runtime::JobEnd end = Failed;
  };
  const auto becomes = [this](platform::ConnectionState state, int error = ECONNRESET) {
    return [this, state, error] { unit_.now = state, unit_.error_ = error; };
  };
  const auto holds = [this](std::size_t size) {  // the clock of files is coarse
    return [this, size] { usleep(20'000), write("app.tgz", std::string(size, 's')); };
  };
  const auto stop = [this] { busy_.requestStop(); };
  const std::string file = "Unable to send file|", reset = "Error #104|words\n";
  const std::string aborted = " Aborted sending app.tgz to 10.0.0.1\n";
  const std::string noReply = file + "Send file request failed\n";
  const std::string noSpace = file + "There is not enough free flash space on the Kt500 series unit\n";
  const std::string badArguments = file + "Bad arguments in the command packet\n";
  const std::string changed =
      file + "The file was changed while it was being sent\n FAILED to send app.tgz to 10.0.0.1\n";
  const auto vanishes = [this] { std::filesystem::remove(host("app.tgz")); };
  const std::string unreadable = file + "The file could not be read\n FAILED to send app.tgz to 10.0.0.1\n";
  const std::string unreached =
      "Connection Error|Unable to connect to remote server\n Unable to connect to 10.0.0.1\n";
  for (const Case& c : std::initializer_list<Case>{
           {"-", "", {}, unreached, "Nothing answered within 20 seconds", 20s},
           {"-", "5142|", becomes(Closed, ECONNREFUSED), unreached, "it refused"},
           {"-", "5142|", becomes(Closed, EHOSTUNREACH), unreached, "No way leads there"},
           {"-", "5142|", becomes(Closed, EACCES), unreached, "The system says: words"},
           {"-", "5142|", becomes(Closing, EPIPE), unreached, "hung up at once"},
           {"-", "5142|", stop, aborted, "", 0s, Stopped},
           {"OK", "Connected|", stop, aborted, "", 0s, Stopped},
           {"OK", "Connected|", becomes(Closed), reset, "hung up after 0 of "},
           {"OK", "Connected|", vanishes, unreadable, "app.tgz cannot be read: No such file"},
           {"", "ask|", stop, aborted, "", 0s, Stopped},
           {"", "ask|", becomes(Closed), noReply, "hung up without an answer", 5s},
           {"", "ask|", becomes(Closing), noReply, "hung up without an answer", 5s},
           {"O", "", {}, noReply, "no answer within 5 seconds", 5s},
           {"ok\t", "", {}, noReply, "not as a unit does: \"ok\xEF\x80\x89\"", 5s},
           {"ok", "Disconnected|", stop, "", "", 0s, Stopped},
           {"NOSPACE\r\n", "", {}, noSpace, "to take app.tgz, 2500 bytes. Nothing of it was sent"},
           {"BADARGS!", "", {}, badArguments, "2500 bytes, permissions 400, owner usr1"},
           {"OK", "ask|Connected|", becomes(Closed), reset, "hung up after 0 of 2500"},
           {"OK", "1000|", stop, aborted, "", 0s, Stopped},
           {"OK", "1000|", becomes(Closed, ENETDOWN), "Error #100|words\n", "broke after 1000 of 2500"},
           {"OK", "1000|", becomes(Closing), reset, "hung up after 1000 of 2500"},
           {"OK", "1000|", holds(2400), changed, "2400 of 2500 bytes of C:\\app.tgz"},
           {"OK", "1000|", holds(2500), changed, "2000 of 2500"},
           {"OK", "1000|", holds(2600), changed, "2000 of 2500"},
           {"OK, slowly", "1000|", stop, aborted, "", 0s, Stopped},
           {"OK", "finish|", stop, aborted, "", 0s, Stopped},
           {"OK", "finish|", becomes(Closed), reset, "hung up after 2500 of 2500 bytes"}}) {
    SCOPED_TRACE(c.reply + " " + c.due + c.told + c.explained);
    std::size_t before = 0;
    fresh(c.due, c.deed ? [&] { before = unit_.all.size(), c.deed(); } : c.deed);
    unit_.reply = c.reply;
    unit_.takes = c.reply != "OK, slowly";
    EXPECT_EQ(run(), c.end);
    EXPECT_EQ(told(), c.told);
    for (const std::string& part : {c.explained, "10.0.0.1, port 5142"s})
      EXPECT_TRUE(c.end == Stopped || has(person_.explained, part));
    EXPECT_TRUE(took_ >= c.lasts && took_ < c.lasts + 900ms);
    EXPECT_EQ(unit_.now, Closed);
    EXPECT_TRUE(unit_.all.ends_with("|-left|Disconnected|"));
    EXPECT_LT(unit_.all.size(), 145U) << unit_.all;  // each change once
    EXPECT_TRUE(c.end == Failed || unit_.all.substr(before) == "-left|Disconnected|") << unit_.all;
    EXPECT_TRUE(c.told != changed || unit_.data.size() < 2500);  // what the unit has is no whole file
    EXPECT_EQ(has(unit_.all, "Sending"), c.due.ends_with("0|") || c.due == "finish|");
  }
}

TEST_F(SendTest, WhatComesTooLateOrTooEarly) {
  unit_.reply = "";
  person_.onMessage = [this] { unit_.arrived = "OK"; };
  EXPECT_EQ(run(), Failed);
  EXPECT_EQ(unit_.data, "");
  fresh("Sending..|", [this] { write("app.tgz", "no longer empty"); });
  write("app.tgz", "");
  EXPECT_EQ(run(), Failed);
  fresh("Sending..|", [this] { std::filesystem::rename(host("app.tgz"), host("b")); });
  EXPECT_EQ(run(), Done);
  fresh();
  busy_.requestEnd();
  EXPECT_EQ(run(), Stopped);
  EXPECT_EQ(unit_.all, "");
}

TEST_F(SendTest, ASlowUnitLivesAndADeadOneIsLostAfterTwentySeconds) {
  for (const std::int64_t kept : {0, 3000})  // the bytes wait here, or the system holds them all
    for (const bool slow : {true, false}) {
      fresh();
      unit_.takes = false;
      unit_.systemHolds = kept;
      unit_.onLook = [this, slow, next = unit_.time + 15s]() mutable {
        if (!slow || unit_.time < next) return;
        next = unit_.time + 15s;
        unit_.held = std::max<std::int64_t>(unit_.held - 300, 0);
      };
      EXPECT_EQ(run(), slow ? Done : Failed) << kept;
      EXPECT_EQ(told(), slow ? sent : lost);
      EXPECT_TRUE(slow || has(person_.explained, "took nothing for 20 seconds after 0 of 2500 bytes"));
      EXPECT_TRUE(slow ? took_ > 100s : took_ > 20s && took_ < 21s);
    }
}

TEST_F(SendTest, TheEndIsAwaitedForTwoSecondsAndTheTimeLeftIsThatOfTheLastSecond) {
  random(3'000'000);
  EXPECT_EQ(run(), Done);
  EXPECT_TRUE(took_ >= 400ms + 3000ms + 2s && took_ < 400ms + 3000ms + 2100ms);
  EXPECT_TRUE(has(unit_.all, "|2 s|") && has(unit_.all, "|1 s|"));
}

TEST_F(SendTest, RealConnections) {
  order_.address = {"127", "0", "0", "001"};  // octets are decimal
  for (const std::size_t size : {0UL, 1UL, 300'000UL}) {
    random(size);
    const std::string events = runReal("--split-reply --reply OKOK", Done);
    EXPECT_LT(took_, 1900ms) << size;  // the unit's close ends it
    EXPECT_TRUE(has(events, "received " + std::to_string(size) + " bytes\nstored"));
  }
  told();
  random(400'000);
  EXPECT_FALSE(has(runReal("--close-after 0", Failed), "stored"));
  EXPECT_EQ(told(), "Error #32|Broken pipe\n");
  EXPECT_FALSE(has(runReal("--read-rate 0", Failed, 20), "stored"));
  EXPECT_EQ(told(), lost);
}

TEST_F(SendTest, HostsAndPorts) {
  { order_.port = std::to_string(SimProcess().port()); }
  const auto errorOf = [](const std::string& host, const std::string& port) {
    platform::TcpConnection connection;
    connection.connectTo(host, port);
    while (connection.look() == Connecting) usleep(1000);
    return connection.error().number;
  };
  EXPECT_EQ(errorOf("127.0.0.1", order_.port), ECONNREFUSED);
  const bool named = gethostbyname("localhost") != nullptr;  // a bare system may know no names
  EXPECT_EQ(errorOf("localhost", order_.port), named ? ECONNREFUSED : EHOSTUNREACH);
  EXPECT_EQ(errorOf("no.host.invalid", "80"), EHOSTUNREACH);
  for (const char* host : {"127.0.0.256", "127.0.0", "127.0.0.1.1", "127..0.1", "..."})
    EXPECT_EQ(errorOf(host, order_.port), EINVAL) << host;
  for (const char* port : {"x", "0", "65536", "80 x", "-1"})
    EXPECT_EQ(errorOf("127.0.0.1", port), EINVAL) << port;
}

}  // namespace
