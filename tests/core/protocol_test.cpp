#include "download/Protocol.h"

#include <gtest/gtest.h>

#include "download/Explanation.h"
#include "download/KnownAddresses.h"
#include "platform/InternetAddress.h"
#include "runtime/IsExecutable.h"
#include "tests/SimProcess.h"
#include "tests/World.h"

using namespace download;
using runtime::PermissionMode;

TEST(PermissionMode, TextFieldAndFolderVariant) {
  const auto field = [](const char* line) { return PermissionMode::fromModeField(line).text(); };
  EXPECT_EQ(field("-rwxr-xr-x 1 0 0 12 Jan  1 00:00 a"), "755");
  EXPECT_EQ(field("drwsr-Srwt+"), "646");  // "s" and "t" are no execute
  EXPECT_EQ(field("-rw"), "600");
  EXPECT_EQ(field(""), "000");
  EXPECT_EQ(field("ls: cannot access '/x': No such file"), "000");
  EXPECT_EQ(runtime::plainFileMode.directoryVariant(), runtime::executableMode);
  EXPECT_EQ((PermissionMode{6, 0, 0}).directoryVariant().text(), "711");
  EXPECT_EQ(runtime::executableMode.directoryVariant().text(), "755");
}

class IsExecutable : public testworld::World {};

TEST_F(IsExecutable, ByNameOrFirstBytes) {
  for (const char* name : {"x.sh", "SETUP.EXE", "archive.tar.sh", ".exe", "C:\\a.b\\c.Ktl"})
    EXPECT_TRUE(runtime::IsExecutableName(name)) << name;
  for (const char* name : {".sh", "", "sh", "C:\\my.dir\\run", "a.sh.txt", "x.sh "})
    EXPECT_FALSE(runtime::IsExecutableName(name)) << name;
  const auto holds = [this](const char* text) {
    write("run", text);
    return runtime::IsExecutable(files_, "C:\\run");
  };
  for (const char* text : {"#!/bin/sh\n", "\177ELF"}) EXPECT_TRUE(holds(text)) << text;
  for (const char* text : {"#!/bin/bash\n", " #!/bin/sh", "#!/bin/s", "ELF", "", "\177EL"})
    EXPECT_FALSE(holds(text)) << text;
  for (const char* none : {"C:\\", "C:\\gone"}) EXPECT_FALSE(runtime::IsExecutable(files_, none)) << none;
}

TEST(Protocol, RequestOfAPlainFileAndOfAnArchive) {
  EXPECT_EQ(requestBytes({getRemoteName("C:\\pkg\\run.sh"), 1234, {7, 5, 5}, "usr3"}),
            requestOf({"DLD:run.sh", "1234", "755", "usr3", "users"}));
  EXPECT_EQ(requestBytes({"app_pack.tgz", 5'000'000'000, {4, 0, 0}, "usr1"}),
            requestOf({"DLD:app_pack.tgz", "5000000000", "400", "usr1", "users"}));
  EXPECT_EQ(requestBytes({getRemoteName("C:\\a\xEF\x80\xBA\xEF\x83\xBF"), 0, {}, "usr1"}),
            requestOf({"DLD:a:\xFF", "0", "000", "usr1", "users"}));  // the name's own bytes
}

TEST(Protocol, RemoteName) {
  EXPECT_EQ(getRemoteName("C:\\out\\my app.tgz"), "my_app.tgz");
  EXPECT_EQ(getRemoteName("C:\\out\\my app.TGZ"), "my app.TGZ");
  EXPECT_EQ(getRemoteName("C:\\o p\\a b c.tar.gz"), "a_b_c.tar.gz");
  EXPECT_EQ(getRemoteName("a.tgz"), "");
  EXPECT_FALSE(isArchive("C:\\a.zip"));
  EXPECT_TRUE(isArchive("C:\\a.ipk"));
}

TEST(ReplyCollector, DecidesAsSoonAsItCanAndOnce) {
  const auto lastOf = [](std::initializer_list<std::string_view> pieces) {
    ReplyCollector collector;
    Reply reply = Reply::Undecided;
    for (const std::string_view piece : pieces) reply = collector.add(piece);
    return reply;
  };
  for (const auto& undecided : {lastOf({"", "O"}), lastOf({"NOSPAC"})})
    EXPECT_EQ(undecided, Reply::Undecided);
  EXPECT_EQ(lastOf({"O", "K"}), Reply::Ok);
  EXPECT_EQ(lastOf({"NOS", "PACE\r\n and more"}), Reply::NoSpace);
  EXPECT_EQ(lastOf({"BADARGS"}), Reply::BadArgs);
  const std::string large(1 << 20, 'x');
  for (const auto& pieces : {"ok", "NOSX", large.c_str()})
    EXPECT_EQ(lastOf({pieces}), Reply::Unknown) << pieces;
  EXPECT_EQ(lastOf({"OX", "OK"}), Reply::Unknown);
}

TEST(Protocol, ProgressAndTimeLeft) {
  EXPECT_EQ(percentOf(0, 0), 100);
  EXPECT_EQ(percentOf(999, 1000), 99);
  EXPECT_EQ(percentOf(1ULL << 62, 1ULL << 63), 50);
  EXPECT_EQ(secondsLeft(5'000'000'000, 1'000'000, 0), 4999U);
  EXPECT_EQ(secondsLeft(10, 9, 1), 0U);
  EXPECT_EQ(secondsLeft(10, 5, 5), std::nullopt);
}

TEST(Protocol, Addresses) {
  EXPECT_EQ(splitAddress("192.168"), (Address{"192", "168", "", ""}));
  EXPECT_EQ(splitAddress(".1..2.3"), (Address{"", "1", "", "2"}));
  for (const auto& [text, expected] : {std::pair(" 192.168.1.7\n", "192.168.1.7|"),
                                       {"192.168.1.7:5142", "192.168.1.7|5142"},
                                       {"192.168.1.7/24 brd 192.168.1.255", "192.168.1.7|"},
                                       {"http://1.2.3.4:80/x", "1.2.3.4|80"},
                                       {"v2.0: 1.2.3.4.", "1.2.3.4|"},
                                       {"[1.2.3.4]:80", "1.2.3.4|"},
                                       {"1.2.3.4:65536", "1.2.3.4|"},
                                       {"127.0.0.010", "127.0.0.010|"},
                                       {"1.2.3.4.5 6.7.8.9", "6.7.8.9|"}}) {
    const auto found = addressIn(text);
    ASSERT_TRUE(found) << text;
    EXPECT_EQ(joined(found->address) + "|" + found->port, expected);
  }
  for (const char* text : {"", "192", "192.168.1", "1.2.3.4.5", "1.2.3.", "1.2.3.x", "1.2.3.1000", "1 .2.3.4",
                           "1.2.3.256", "v1.2.3.4", "1.2.3.4a", "..1.2.3.4", "1.2.3.4.net"})
    EXPECT_FALSE(addressIn(text)) << text;
  EXPECT_EQ(platform::ipv4Of("127.0.0.010"), 0x7F00000AU);
  EXPECT_TRUE(isOctet("007") && !isOctet("1234") && !isOctet("") && !isOctet("1a"));
}

TEST(KnownAddresses, TheLastEightTheNewestFirstAndNamesStay) {
  KnownAddresses known(
      "1.1.1.1:5142 Lab 3\nnonsense\n1.1.1.256:1\n2.2.2.2:0\n1.1.1.001:05142 again\n3.3.3.3:80");
  EXPECT_EQ(known.stored(), "1.1.1.1:5142 Lab 3\n3.3.3.3:80\n");
  EXPECT_EQ(known.all()[0].text() + "|" + known.all()[1].text(), "Lab 3  1.1.1.1|3.3.3.3:80");
  known.use({{"x", "1", "1", "1"}, "5142", ""});
  known.use({{"3", "3", "3", "3"}, "81", ""});
  known.use({{"1", "1", "1", "1"}, "5142", ""});
  known.rename({{"3", "3", "3", "3"}, "80", "Bench"});
  EXPECT_EQ(known.stored(), "1.1.1.1:5142 Lab 3\n3.3.3.3:81\n3.3.3.3:80 Bench\n");
  known.forget({{"3", "3", "3", "3"}, "81", ""});
  for (int i = 1; i <= 7; ++i) known.use({{"9", "9", "9", std::to_string(i)}, "1", ""});
  EXPECT_EQ(known.all().size(), 8U);
  EXPECT_EQ(known.all().front().text() + "|" + known.all().back().text(), "9.9.9.7:1|Lab 3  1.1.1.1");
}

TEST(Explanation, OfWhatIsNoPlaceToConnectTo) {
  for (const auto& [address, port, error, said] :
       {std::tuple("1.2.3.400", "5142", EINVAL, "\"1.2.3.400\" is no IP"),
        {"1.2.3.4", "x", EINVAL, "\"x\" is no port"},
        {"a.b.c.d", "1", EHOSTUNREACH, "no name that is known here"}})
    EXPECT_TRUE(testworld::has(explainNoConnection({address, port, {}, 0}, {error, ""}), said));
}
