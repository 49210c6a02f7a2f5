#include "platform/Confinement.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/sysmacros.h>
#include <sys/un.h>

#include "platform/ChildProcess.h"
#include "tests/Launched.h"

namespace {

namespace fs = std::filesystem;
using namespace platform;
using tests::Launched;
using tests::Who;

using ConfinementTest = tests::LauncherTest;

/// Somebody to connect to, and to signal.
class Victims {
 public:
  Victims(const std::string& path, Launched process) : process_(std::move(process)) {
    sockaddr_un local{};
    local.sun_family = AF_UNIX;
    path.copy(local.sun_path, sizeof local.sun_path - 1);
    sockaddr_in loopback{};
    loopback.sin_family = AF_INET;
    loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    unlink(path.c_str());
    listenOn(local_, local);
    listenOn(tcp_, loopback);
    chmod(path.c_str(), 0777);
    EXPECT_EQ(process_.systemError(), 0);
  }
  ~Victims() {
    kill(-process_.process, SIGKILL);
    process_.status();
  }
  Victims(const Victims&) = delete;
  Victims& operator=(const Victims&) = delete;

  std::string port() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(tcp_.get(), reinterpret_cast<sockaddr*>(&address), &size);
    return std::to_string(ntohs(address.sin_port));
  }
  std::string process() const { return std::to_string(process_.process); }

 private:
  template <typename Address>
  static void listenOn(const Descriptor& to, const Address& address) {
    ASSERT_EQ(bind(to.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(to.get(), 8), 0);
  }
  Descriptor local_{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  Descriptor tcp_{socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  Launched process_;
};

const std::string names = "create write cut delete rename link folder ";
const std::string attributes = "chmod chown touch ";
const std::string devices = "use make ";
const std::string calls = "tcp local pair ring type paste ";

class Layers : public ConfinementTest, public testing::WithParamInterface<Who> {
 protected:
  void SetUp() override {
    if (GetParam() == Who::Root && geteuid() != 0) GTEST_SKIP() << "only root can be root";
    if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  }

  /// What a tool that may change "in" can do to `folder` and elsewhere.
  std::string tamper(Words words, const std::string& folder) const {
    for (const std::string& each : {in(), out()}) prepare(each);
    const Victims victims(root_ + "/socket", start(GetParam(), {}, {"/bin/sleep", "60"}));
    words.push_back(writeWord + in());
    const Words tool{root_ + "/tamper", folder, in(), victims.port(), root_ + "/socket", victims.process()};
    const Launched run = start(GetParam(), words, tool);
    std::string done = run.text();
    EXPECT_EQ(run.status(), 0) << "the null device was closed";
    return done;
  }
  std::string forThisUser(std::string text) const {
    const bool mayUse = geteuid() == 0;  // no other could put a device there
    for (const auto& [part, can] : {std::pair(std::string("use "), mayUse),
                                    {"make ", GetParam() == Who::Root},
                                    {"handle ", GetParam() == Who::Root}})
      if (const std::size_t at = text.find(part); !can && at != text.npos) text.erase(at, part.size());
    return text;
  }

 private:
  /// A folder of his own with what can be tampered with.
  void prepare(const std::string& folder) const {
    fs::remove_all(folder);
    fs::create_directory(folder);
    for (const char* const file : {"/file", "/old", "/victim"}) std::ofstream(folder + file) << "text";
    mknod((folder + "/null").c_str(), S_IFCHR | 0666, makedev(1, 3));
    if (GetParam() == Who::Root) return;
    EXPECT_TRUE(tests::giveTo(folder, tests::nobody, tests::nobody));
    for (const auto& file : fs::directory_iterator(folder))
      EXPECT_TRUE(tests::giveTo(file.path(), tests::nobody, tests::nobody));
  }
};

TEST_P(Layers, EachStopsItsOwn) {
  const std::pair<const char*, std::string> attacks[] = {
      {"", names + attributes + devices + "handle " + calls + "signal "},
      {mountsWord, "handle " + calls + "signal "},
      {processesWord, names + attributes + devices + "handle " + calls},
      {landlockWord, attributes + "make " + calls},
      {callsWord, names + attributes + devices + "signal "},
  };
  for (const auto& [layer, succeeds] : attacks) {
    const Words words = *layer == '\0' ? Words{} : Words{layer};
    if (offers(GetParam(), words))
      EXPECT_EQ(tamper(words, out()), forThisUser(succeeds)) << layer;
    else
      std::printf("skipped: this system does not offer %s\n", layer);
  }
}

TEST_P(Layers, TogetherTheyLeaveNothingOutsideAndFilesInside) {
  const Words all{mountsWord, processesWord, landlockWord, callsWord};
  if (!offers(GetParam(), all)) GTEST_SKIP() << "this system does not offer all layers together";
  EXPECT_EQ(tamper(all, out()), "");
  EXPECT_EQ(tamper(all, in()), names + attributes);
}

INSTANTIATE_TEST_SUITE_P(As, Layers, testing::Values(Who::Root, Who::User),
                         [](const auto& as) { return as.param == Who::Root ? "Root" : "User"; });

TEST_F(ConfinementTest, TheLauncherEndsAsTheToolDoes) {
  const char* const orphanFirst = "(true &); sleep 0.1; exit 7";
  for (const Words& words : {Words{}, everything()}) {
    EXPECT_EQ(WEXITSTATUS(start(Who::Root, words, {"/bin/sh", "-c", orphanFirst}).status()), 7);
    for (const int number : {SIGKILL, SIGTERM, SIGSEGV}) {
      const int status =
          start(Who::Root, words, {"/bin/sh", "-c", "kill -" + std::to_string(number) + " $$"}).status();
      EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << status;
    }
    const Launched silent = start(Who::Root, words, {"/bin/sh", "-c", "exec >/dev/null; exec sleep 20"});
    EXPECT_EQ(silent.systemError(), 0);
    EXPECT_EQ(silent.text(), "");
    EXPECT_EQ(waitpid(silent.process, nullptr, WNOHANG), 0) << "its output or report ended with it only";
    kill(-silent.process, SIGTERM);
    EXPECT_EQ(WTERMSIG(silent.status()), SIGTERM);
  }
}

TEST_F(ConfinementTest, WhatDoesNotStartSaysWhy) {
  std::ofstream(root_ + "/closed") << "text";
  const std::string writes = writeWord + in(), ended = parentWord + std::string("1");
  using Case = std::tuple<std::string, std::string, int, int>;
  for (const Words& layers : {Words{}, everything()})
    for (const auto& [program, word, error, status] :
         {Case{"/bin/true", writes, 0, 0}, Case{"/gone", writes, ENOENT, notExecutedStatus},
          Case{root_ + "/closed", writes, EACCES, notExecutedStatus},
          Case{"/bin/true", writeWord + root_ + "/gone", ENOENT, notConfinedStatus},
          Case{"/bin/true", ended, ESRCH, notConfinedStatus}}) {
      Words words = layers;
      words.push_back(word);
      const Launched run = start(Who::Root, words, {program});
      EXPECT_EQ(run.systemError(), error) << program << word;
      EXPECT_EQ(WEXITSTATUS(run.status()), status) << program << word;
    }
}

TEST_F(ConfinementTest, WhatTheToolStartedEndsWithIt) {
  const Words words = everything();
  if (!offers(Who::Root, {processesWord})) GTEST_SKIP() << "this system offers no process namespaces";
  const Words tool{"/bin/sh", "-c", "setsid sleep 60 & trap 'exit 3' TERM; echo on; wait"};
  char byte = 0;
  const Launched run = start(Who::Root, words, tool);
  ASSERT_EQ(read(run.output.get(), &byte, 1), 1);
  kill(-run.process, SIGTERM);
  EXPECT_TRUE(tests::writersEnd(run.output));
  EXPECT_EQ(WEXITSTATUS(run.status()), 3);
}

TEST_F(ConfinementTest, TheToolEndsWithTheProgram) {
  for (const Words& words : {Words{}, everything()}) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);  // all that is started keeps it
    const Descriptor held(ends[0]);
    const pid_t program = fork();
    if (program == 0) {
      const Launched run = start(Who::Root, words, {"/bin/sh", "-c", "echo on; exec sleep 60"});
      char byte = 0;
      if (read(run.output.get(), &byte, 1) == 1 && ::write(ends[1], &byte, 1) == 1) pause();
      _exit(1);
    }
    close(ends[1]);
    char byte = 0;
    ASSERT_EQ(read(held.get(), &byte, 1), 1);
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
    EXPECT_TRUE(tests::writersEnd(held));
  }
}

TEST_F(ConfinementTest, FoldersAreWhatTheyLeadTo) {
  const std::string odd = root_ + "/in/a b\n\xFF--";
  fs::create_directories(odd + "/inner");
  fs::create_directory_symlink(odd, root_ + "/link");
  Words words = everything();
  words.front() = writeWord + root_ + "/link";
  words.push_back(writeWord + odd + "/inner");  // what lies in another one can be moved into it
  const std::string script =
      "cd link && touch inner/x && mv -T inner/x x && ln x inner/y && ! touch ../../z 2>&1";
  const auto there = [this] { EXPECT_EQ(chdir(root_.c_str()), 0); };
  EXPECT_EQ(start(Who::Root, words, {"/bin/sh", "-c", script}, there).status(), 0);
  words.push_back(writeWord + std::string("/"));
  EXPECT_EQ(start(Who::Root, words, {"/bin/sh", "-c", "cd link && touch ../../z"}, there).status(), 0);
}

TEST_F(ConfinementTest, MountsBelowAFolderStayAsTheyWere) {
  if (geteuid() != 0 || !offers(Who::Root, {mountsWord})) GTEST_SKIP() << "nothing can be mounted here";
  std::ofstream(root_ + "/script")
      << "set -e; cd in; mkdir open closed; mount -t tmpfs none open; mount -t tmpfs -o ro none closed\n"
         "before=$(wc -l </proc/self/mountinfo)\n"
         "../confine --parent=$$ --mounts --write=. -- /bin/sh sh -c 'touch a open/a && ! touch closed/a && "
         "! touch ../a && ! umount open'\n"
         "[ $before = $(wc -l </proc/self/mountinfo) ] && echo good\n";
  EXPECT_EQ(output("cd '" + root_ + "' && unshare -m --propagation shared sh script 2>&1 | tail -n 1"),
            "good\n");
}

TEST_F(ConfinementTest, WordsSayWhatARunMayChange) {
  const Confinement nothing(root_ + "/gone");
  EXPECT_EQ(nothing.missing(), "Tools are not confined: this system offers nothing for it");
  EXPECT_EQ(nothing.wordsBefore("/bin/tar", {{"C:\\"}}, drives_, true), Words{});

  const Confinement confinement(launcher());
  const Words own = confinement.wordsBefore("/bin/tar", {{"C:\\a b"}}, drives_, true).value();
  Words expected{launcher(), parentWord + std::to_string(getpid())};
  for (const auto& [flag, word] : {std::pair(&ConfinementLayers::mounts, mountsWord),
                                   {&ConfinementLayers::processes, processesWord},
                                   {&ConfinementLayers::landlock, landlockWord},
                                   {&ConfinementLayers::calls, callsWord}})
    if (confinement.offered().*flag) expected.emplace_back(word);
  expected.insert(expected.end(), {reportWord, writeWord + host("a b"), "--", "/bin/tar"});
  EXPECT_EQ(own, expected);
  EXPECT_EQ(confinement.wordsBefore("/bin/tar", {{"Q:\\"}}, drives_, true), std::nullopt);
}

TEST_F(ConfinementTest, AnOrdinaryUserPacksForeignOwners) {
  if (geteuid() != 0 || !tests::ordinaryUserGetsAbout()) GTEST_SKIP() << "only root can give files away";
  for (const auto& [name, user, group] :
       {std::tuple("", 65534, 65534), {"/foreign", 500, 1}, {"/shared", 65534, 4242}}) {
    if (*name != '\0') std::ofstream(in() + name) << "text";
    ASSERT_TRUE(tests::giveTo(in() + name, static_cast<uid_t>(user), static_cast<gid_t>(group)));
  }
  const std::string script =
      "mkdir staged && cp -p shared staged && tar --sort=name --numeric-owner -cf a.tar foreign shared "
      "staged && "
      "[ \"$(tar --numeric-owner -tvf a.tar | cut -d' ' -f2 | tr '\\n' ' ')\" = "
      "'500/1 65534/4242 65534/65534 65534/4242 ' ]";
  EXPECT_EQ(
      tests::inChild([&] {
        tests::become(Who::User);
        const MayChange mayChange{{drives_.toWindows(in())}, true};
        Words words = Confinement(launcher()).wordsBefore("/bin/sh", mayChange, drives_, false).value();
        words.insert(words.end(), {"sh", "-c", script});
        ChildProcess::Failure failure{};
        int error = 0;
        auto run = ChildProcess::start({launcher(), words, {"PATH=/bin:/usr/bin"}, in()}, failure, error);
        return run ? run->status() : 99;
      }),
      0);
}

}  // namespace
