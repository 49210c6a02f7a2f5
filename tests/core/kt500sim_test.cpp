#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <random>

#include "platform/Descriptor.h"
#include "tests/OnDisk.h"
#include "tests/SimProcess.h"

namespace fs = std::filesystem;
using tests::bytesOf;
using testworld::has;

namespace {

/// What asks for a file with this name and these fields.
std::string asks(const std::string& name, const std::string& size = "5", const std::string& mode = "640",
                 const std::string& owner = "usr2", const std::string& group = "users") {
  return requestOf({"DLD:" + name, size, mode, owner, group});
}

platform::Descriptor connectTo(const SimProcess& sim) {
  platform::Descriptor client(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(sim.port());
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(connect(client.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  return client;
}

void tell(const platform::Descriptor& client, const std::string& bytes) {
  send(client.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

/// What comes until `most` bytes are there or the other side is done.
std::string hear(const platform::Descriptor& client, std::size_t most = 1000) {
  std::string text;
  char c = 0;
  while (text.size() < most && recv(client.get(), &c, 1, 0) == 1) text += c;
  return text;
}

std::string answerTo(const SimProcess& sim, const std::string& request) {
  const auto client = connectTo(sim);
  tell(client, request);
  shutdown(client.get(), SHUT_WR);
  return hear(client);
}

std::vector<std::string> names(const std::string& folder) {
  std::vector<std::string> found;
  for (const auto& entry : fs::directory_iterator(folder)) found.push_back(entry.path().filename());
  std::sort(found.begin(), found.end());
  return found;
}

/// Sends an archive that shell commands make in a folder of their own, as out.tgz.
void sendArchive(const SimProcess& sim, const std::string& commands) {
  const std::string folder = sim.folder() + "/src";
  fs::create_directories(folder + "/pkg");
  EXPECT_EQ(std::system(("cd '" + folder + "/pkg' && " + commands).c_str()), 0);
  const std::string archive = bytesOf(folder + "/out.tgz");
  const auto client = connectTo(sim);
  tell(client, asks("out.tgz", std::to_string(archive.size()), "400", "usr1"));
  EXPECT_EQ(hear(client, 2), "OK");
  tell(client, archive);
  EXPECT_EQ(hear(client), "");
}

/// A new folder whose tar is this script.
std::string toolsWith(const std::string& tar) {
  std::string tools = fs::temp_directory_path() / "kt500sim-tools-XXXXXX";
  tools = mkdtemp(tools.data());
  std::ofstream(tools + "/tar") << "#!/bin/sh\n" << tar;
  fs::permissions(tools + "/tar", fs::perms(0755));
  return tools;
}

}  // namespace

TEST(Kt500sim, StoresExactlyTheAnnouncedBytesWithTheirMode) {
  SimProcess sim;
  fs::create_symlink(sim.folder() + "/victim", sim.root() + "/a\nb");
  const auto client = connectTo(sim);
  const std::string request = asks("a\nb");
  tell(client, request.substr(0, 2));
  tell(client, request.substr(2));
  EXPECT_EQ(hear(client, 2), "OK");
  tell(client, "12345");
  EXPECT_EQ(hear(client), "");
  EXPECT_TRUE(has(sim.rest(),
                  "request a\\x0Ab size 5 mode 640 owner usr2 group users\nreply OK\n"
                  "received 5 bytes\nstored a\\x0Ab owner 501/1\nclosed\n"));
  const std::string stored = sim.root() + "/a\nb";
  EXPECT_EQ(bytesOf(stored), "12345");
  EXPECT_EQ(tests::statusOf(stored).st_mode, static_cast<mode_t>(S_IFREG | 0640));
  EXPECT_FALSE(fs::exists(sim.folder() + "/victim"));
}

TEST(Kt500sim, HostileRequestsAreRefusedAndLeaveNothing) {
  SimProcess sim("--count 17");
  for (const std::string& request :
       {requestOf({"dld:a", "5", "640", "usr2", "users"}), asks(""), asks(".."), asks("../x"),
        asks(std::string(256, 'n')), "DLD:" + std::string(100000, 'n'), asks("a", "05"), asks("a", "-5"),
        asks("a", "99999999999999999999"), asks("a", "5", "680"), asks("a", "5", "4755"),
        asks("a", "5", "640", "../../etc"), asks("a", "5", "640", "usr2", ""), asks("a", "5", "640", "root"),
        asks("a", "5", "640", "usr1", "root"), asks("a") + "early", std::string(6, '\0')})
    EXPECT_EQ(answerTo(sim, request), "BADARGS") << request;
  EXPECT_TRUE(has(sim.rest(), "refused: not a file name"));
  EXPECT_TRUE(names(sim.root()).empty());
  EXPECT_EQ(names(sim.folder()).size(), 1U);
}

TEST(Kt500sim, SurvivesRandomRequests) {
  SimProcess sim("--timeout 100");
  std::mt19937 random(4711);
  const std::string likely = requestOf({"DLD:a", "5640", "usr1", "users", "/.."});
  for (int round = 0; round < 200; ++round) {
    std::string request = asks("a");
    for (auto changes = random() % 4; changes > 0; --changes)
      request.replace(random() % request.size(), random() % 3, 1, likely[random() % likely.size()]);
    const std::string answer = answerTo(sim, request);
    EXPECT_TRUE(answer.empty() || answer == "BADARGS" || answer == "OK") << answer;
  }
  EXPECT_TRUE(names(sim.root()).empty());
}

TEST(Kt500sim, NoSpaceBrokenOffAndStalled) {
  SimProcess sim("--count 3 --free 5 --timeout 200");
  EXPECT_EQ(answerTo(sim, asks("a", "6")), "NOSPACE");
  EXPECT_EQ(answerTo(sim, asks("a")), "OK");  // and no data
  const auto stalled = connectTo(sim);
  tell(stalled, "DLD:a");
  EXPECT_EQ(hear(stalled), "");  // closed by the other side
  const std::string events = sim.rest();
  EXPECT_TRUE(has(events, "broken off after 0 bytes") && has(events, "no request")) << events;
  EXPECT_TRUE(names(sim.root()).empty());
}

TEST(Kt500sim, InstallsAsATerminalDoes) {
  SimProcess sim("--once --install");
  fs::create_directories(sim.root() + "/home/usr1/d/kept");
  fs::create_symlink(sim.folder(), sim.root() + "/home/usr1/link");
  sendArchive(sim,
              "mkdir -p d ../usr8 && echo 1 > 'd/a b' && echo 2 > ../usr8/s && ln -s 'd/a b' link && "
              "chmod 4755 'd/a b' && chmod 700 d && chmod 640 ../usr8/s && "
              "tar -zcPf ../out.tgz --owner=500 --group=1 --numeric-owner d link ../usr8");
  const std::string events = sim.rest();
  EXPECT_TRUE(has(events,
                  "installed out.tgz in home/usr1\nmember drwx------ 500/1 0 home/usr1/d/\n"
                  "member -rwsr-xr-x 500/1 2 home/usr1/d/a b\n"
                  "member lrwxrwxrwx 500/1 0 home/usr1/link -> d/a b\n"));
  EXPECT_TRUE(has(events, "member -rw-r----- 500/1 2 home/usr8/s\nclosed\n"));
  EXPECT_EQ(bytesOf(sim.root() + "/home/usr1/link") + bytesOf(sim.root() + "/home/usr8/s"), "1\n2\n");
  EXPECT_EQ(tests::modeOf(sim.root() + "/home/usr1/d/a b"), 0755U);
  EXPECT_EQ(tests::modeOf(sim.root() + "/home/usr1/d"), 0700U);
  EXPECT_EQ(names(sim.root() + "/home/usr1/d"), (std::vector<std::string>{"a b", "kept"}));
}

TEST(Kt500sim, WhatIsNotInstalledLeavesNothingAndSaysWhy) {
  const std::pair<const char*, const char*> cases[] = {
      {"echo x > ../x && tar -zcPf ../out.tgz ../x", "leads elsewhere: ../x"},
      {"echo x > x && tar -zcPf ../out.tgz --transform 's,^,/tmp/kt500sim-escape/,' x", "leads elsewhere: /"},
      {"echo x > x && tar -zcPf ../out.tgz --transform 's,^,../usr8/../../../,' x",
       "leads elsewhere: ../usr8"},
      {"ln -s /etc out && tar -zcf ../out.tgz out", "leads elsewhere: out -> /etc"},
      {"mkdir d && ln -s .. d/up && tar -zcf ../out.tgz d", "leads elsewhere: d/up -> .."},
      {"ln -s / 'a -> b' && tar -zcf ../out.tgz 'a -> b'", "leads elsewhere: a -> b -> /"},
      {"mkfifo f && tar -zcf ../out.tgz f", "leads elsewhere: f"},
      // Times that tar shows in another form: in a word less, in a wider column.
      {"echo x > x && tar -zcPf ../out.tgz --format=pax --pax-option=mtime:=90000000000000000 "
       "--transform 's,x,../../../escaped x,' x",
       "tar was stopped: "},
      {"echo x > x && tar -cf a.tar --format=pax --pax-option=mtime:=253402400000 x && "
       "tar -rPf a.tar --format=pax --transform 's,x,/tmp/kt500sim-escape,' x && gzip -c a.tar > ../out.tgz",
       ""},
      {"head -c 10000001 /dev/zero > x && tar -zcf ../out.tgz x", "no space for: x"},
      {"echo no archive > ../out.tgz", "This does not look like a tar archive"},
      {"echo x > x && tar -zcf a.tgz x && head -c 40 a.tgz > ../out.tgz",
       "gzip: stdin: unexpected end of file"},
      {"echo 1 > a && ln a b && echo 2 > first && tar -cf a.tar first a b && tar --delete -f a.tar a && "
       "gzip -c a.tar > ../out.tgz",
       "tar ended with 2: tar: b: Cannot hard link to 'a': No such file or directory"},
      {"echo 1 > a && echo 2 > kept && tar -zcf ../out.tgz a kept", "a folder is in the way: usr1/kept"}};
  for (const auto& [maker, why] : cases) {
    SimProcess sim("--once --install --free 10000000");
    fs::create_directories(sim.root() + "/home/usr1/kept/x");
    sendArchive(sim, maker);
    const std::string events = sim.rest();
    EXPECT_TRUE(has(events, "not installed: out.tgz: ")) << maker;
    EXPECT_TRUE(has(events.substr(events.find("not installed: ")), why));
    EXPECT_EQ(names(sim.root()), (std::vector<std::string>{"home", "out.tgz"})) << maker;
    EXPECT_EQ(names(sim.root() + "/home/usr1"), (std::vector<std::string>{"kept"})) << maker;
    EXPECT_TRUE(fs::is_empty(sim.root() + "/home/usr8")) << maker;
    EXPECT_FALSE(fs::exists(sim.folder() + "/escaped x")) << maker;
  }
  EXPECT_FALSE(fs::exists("/tmp/kt500sim-escape"));
}

TEST(Kt500sim, OneClientHoldsUpNoOther) {
  SimProcess sim("--timeout 400 --limit 1200");
  const auto silent = connectTo(sim);
  const auto slow = connectTo(sim);
  tell(slow, asks("slow", "1000"));
  EXPECT_EQ(hear(slow, 2), "OK");
  EXPECT_EQ(answerTo(sim, "x"), "BADARGS");
  char c = 0;
  EXPECT_EQ(recv(silent.get(), &c, 1, MSG_DONTWAIT), -1);  // is still waited for
  for (int i = 0; i < 200 && recv(slow.get(), &c, 1, MSG_DONTWAIT) == -1 && errno == EAGAIN; ++i) {
    tell(slow, "1");
    usleep(20'000);
  }
  EXPECT_EQ(hear(silent), "");
  const auto half = connectTo(sim);
  tell(half, asks("half", "1000"));
  EXPECT_EQ(hear(half, 2), "OK");
  EXPECT_EQ(sim.end(SIGTERM), (128 + SIGTERM) << 8);
  const std::string events = sim.rest();
  EXPECT_TRUE(has(events, "no request\n") && has(events, "out of time\n")) << events;
  EXPECT_TRUE(names(sim.root()).empty());
}

TEST(Kt500sim, EachClientsArchiveIsInstalledThoughBothHaveOneName) {
  const std::string tools = toolsWith(
      "while [ -e ${0%tar}hold ]; do sleep 0.02; done\n"
      "PATH=${PATH#*:} exec tar \"$@\"\n");
  std::ofstream(tools + "/hold") << "";
  const std::string path = getenv("PATH");
  setenv("PATH", (tools + ":" + path).c_str(), 1);
  SimProcess sim("--count 2 --install");
  setenv("PATH", path.c_str(), 1);
  std::vector<platform::Descriptor> clients;
  for (const std::string owner : {"usr1", "usr2"}) {
    ASSERT_EQ(std::system(("cd " + tools + " && touch of-" + owner + " && tar cf a of-" + owner).c_str()), 0);
    const std::string archive = bytesOf(tools + "/a");
    clients.push_back(connectTo(sim));
    tell(clients.back(), asks("a.tar", std::to_string(archive.size()), "400", owner));
    EXPECT_EQ(hear(clients.back(), 2), "OK");
    tell(clients.back(), archive);
    for (int i = 0; i < 1000 && bytesOf(sim.root() + "/a.tar") != archive; ++i) usleep(10'000);
  }
  fs::remove(tools + "/hold");
  const std::string events = sim.rest();
  for (const char* owner : {"usr1", "usr2"})
    EXPECT_EQ(names(sim.root() + "/home/" + owner), (std::vector<std::string>{std::string("of-") + owner}))
        << events;
  fs::remove_all(tools);
}

TEST(Kt500sim, AnEndLeavesNeitherFilesNorChildren) {
  const std::string tools = toolsWith(
      "[ $2 = -P ] && exit\necho x >$6/x\nsleep 100 &\n"
      "cd ${0%/tar}\necho $! >new\nmv new sleeper\nwait\n");
  const std::string path = getenv("PATH");
  for (const auto& [limit, why] :
       {std::pair("600000", "the simulator was ended"), {"700", "tar took too long"}}) {
    setenv("PATH", (tools + ":" + path).c_str(), 1);
    SimProcess sim("--once --install --limit " + std::string(limit));
    setenv("PATH", path.c_str(), 1);
    const auto client = connectTo(sim);
    tell(client, asks("out.tar", "1"));
    EXPECT_EQ(hear(client, 2), "OK");
    tell(client, "x");
    for (int i = 0; i < 1000 && !fs::exists(tools + "/sleeper"); ++i) usleep(10'000);
    const std::string sleeper = bytesOf(tools + "/sleeper");
    if (limit[0] == '6') sim.end(SIGTERM);
    EXPECT_TRUE(has(sim.rest(), std::string("not installed: out.tar: ") + why));
    EXPECT_EQ(bytesOf("/proc/" + std::to_string(std::stoi(sleeper)) + "/cmdline"), "");
    EXPECT_EQ(names(sim.root()), (std::vector<std::string>{"home", "out.tar"}));
    fs::remove(tools + "/sleeper");
  }
  fs::remove_all(tools);
}
