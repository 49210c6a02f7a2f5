#include "platform/Process.h"

#include <poll.h>

#include <chrono>
#include <thread>

#include "platform/ShellOpen.h"
#include "platform/Signals.h"
#include "platform/SystemInfo.h"
#include "tests/OnDisk.h"

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using platform::notStarted;
using platform::RunResult;
using Words = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

namespace {

/// C: is disk/, where the user's files are and the tools run; the program folder's name has a blank.
class ProcessTest : public testworld::World {
 protected:
  ProcessTest() {
    for (const char* folder : {"program files", "tools", "path"}) fs::create_directory(host(folder));
    environment_.set("path",
                     "Q:\\gone;.;" + drives_.toWindows(host("path")) + ";" + environment_.get("Path"));
  }

  std::string host(const std::string& name) const { return root_ + "/" + name; }
  void script(const std::string& name, const std::string& text, mode_t mode = 0755) const {
    std::ofstream(host(name)) << "#!/bin/sh\n" << text << "\n";
    chmod(host(name).c_str(), mode);
  }
  platform::StartRequest request(const std::string& commandLine) const {
    return {commandLine, "C:\\", drives_.toWindows(host("tools"))};
  }
  RunResult capture(const std::string& commandLine, const platform::WaitStep& step = {}) {
    return runner_.capture(request(commandLine), step);
  }
  RunResult visible(
      const std::string& commandLine, const platform::OutputSink& sink,
      const platform::WaitStep& step = [] { return true; }) {
    return runner_.runVisible(request(commandLine), sink, step);
  }
  bool appears(const std::string& name) const {
    for (int i = 0; i < 1000 && !fs::exists(host(name)); ++i) std::this_thread::sleep_for(10ms);
    return fs::exists(host(name));
  }

  platform::HostCommandRunner runner_{drives_, environment_, drives_.toWindows(host("program files")) + "\\"};
};

}  // namespace

TEST(SplitTest, BlanksSeparateAndQuotesGroup) {
  EXPECT_EQ(platform::splitCommandLine("tar.exe  -C \"/cygdrive/C/a b\" x\t\"\" 'y *' a\"b c\"d \\\"e f"),
            (Words{"tar.exe", "-C", "/cygdrive/C/a b", "x", "", "'y", "*'", "ab cd", "\\e f"}));
  EXPECT_TRUE(platform::splitCommandLine(" \t").empty());
}

TEST_F(ProcessTest, BothStreamsArriveInOrderWithTheStatusAndTheirBytes) {
  script("tools/t", "echo one; echo two >&2; echo three; exit 3");
  const auto said = [this](const char* command) {
    const RunResult result = capture(command);
    return result.text + std::to_string(result.status);
  };
  EXPECT_EQ(said("t"), "one\ntwo\nthree\n3");
  EXPECT_EQ(said("true"), "0");
  EXPECT_EQ(capture("sh -c \"kill -9 $$\"").status, 128 + SIGKILL);
  EXPECT_EQ(capture("cat").text, "");  // stdin is empty
  script("tools/t", "printf 'a\\000b\\377\\r\\n'");
  EXPECT_EQ(capture("t").text, std::string("a\0b\xFF\r\n", 6));
  EXPECT_TRUE(capture("head -c 100000000 /dev/zero").text == std::string(100'000'000, '\0'));
}

TEST_F(ProcessTest, TheNextRunBeginsMeanwhileAndIsTheOneThatIsAskedFor) {
  script("tools/t", "echo $1 >> ../began; echo $1; [ $1 != long ] || exec sleep 60");
  const auto captureBefore = [this](const char* command, const char* next) {
    platform::StartRequest wanted = request(command);
    wanted.manner.next = next;
    return runner_.capture(wanted).text;
  };
  EXPECT_EQ(captureBefore("t a", "t b"), "a\n");
  EXPECT_TRUE(appears("began"));
  EXPECT_EQ(captureBefore("t b", "t long"), "b\n");
  const auto start = Clock::now();
  EXPECT_EQ(captureBefore("t c", ""), "c\n");
  EXPECT_LT(Clock::now() - start, 20s) << "another one was asked for: it is ended";
  std::ifstream file(host("began"));
  const std::string began{std::istreambuf_iterator<char>(file), {}};
  for (const char* name : {"a\n", "b\n", "c\n"}) EXPECT_EQ(began.find(name), began.rfind(name)) << name;
}

TEST_F(ProcessTest, WhatCannotStartSaysWhy) {
  script("tools/closed.exe", "", 0644);
  std::ofstream(host("tools/noformat")) << "text";
  chmod(host("tools/noformat").c_str(), 0755);
  fs::create_directory(host("tools/folder"));
  const auto before = tests::openDescriptors();
  const std::string tooLong = "true " + std::string(200'000, 'x');
  const std::string withNul = "true a" + platform::holdName(std::string(1, '\0'));
  using Case = std::pair<std::string, int>;
  for (const auto& [commandLine, error] :
       {Case{"no-such-program", ENOENT}, Case{"", ENOENT}, Case{"folder", ENOENT}, Case{"..", ENOENT},
        Case{"closed", EACCES}, Case{"noformat", ENOEXEC}, Case{tooLong, E2BIG}, Case{withNul, EINVAL}}) {
    const RunResult result = capture(commandLine);
    EXPECT_EQ(result.status, notStarted) << commandLine.substr(0, 20);
    EXPECT_EQ(result.systemError, error) << commandLine.substr(0, 20);
    EXPECT_FALSE(result.pipeFailed);
  }
  for (const char* folder : {"C:\\gone", "\\\\server\\share"})
    EXPECT_EQ(runner_.capture({"true", folder, ""}).status, notStarted) << folder;
  for (int i = 0; i < 50; ++i) capture("true");
  EXPECT_EQ(tests::openDescriptors(), before);
}

TEST_F(ProcessTest, NoPipeIsToldApart) {
  const tests::Limit none(RLIMIT_NOFILE, 0);
  const RunResult result = capture("true");
  EXPECT_TRUE(result.pipeFailed);
  EXPECT_EQ(result.systemError, EMFILE);
}

TEST_F(ProcessTest, LookUpFollowsItsOrderAndNeverTheUsersFolders) {
  script("disk/mine", "echo user");
  const fs::path caller = fs::current_path();
  fs::current_path(host("disk"));
  EXPECT_EQ(capture("mine").status, notStarted);
  fs::current_path(caller);
  script("tools/mine", "", 0644);  // no program
  for (const std::string placed :
       {"path/mine", "path/mine.exe", "tools/mine.exe", "program files/mine.exe"}) {
    script(placed, "echo " + placed);  // in one folder the exact name comes first
    EXPECT_EQ(capture("mine").text, (placed == "path/mine.exe" ? "path/mine" : placed) + "\n");
  }
  EXPECT_EQ(capture("C:\\mine").text, "user\n");
  EXPECT_EQ(capture("\"/cygdrive/z" + host("program files/mine.exe") + "\"").text,
            "program files/mine.exe\n");
}

TEST_F(ProcessTest, ArgumentsBecomeHostPathsAndRealNames) {
  const std::string held = platform::holdName("a:\"b\xFF");
  const std::string there = host("disk");
  script("tools/t", "printf '%s\\n' \"$@\"");
  EXPECT_EQ(capture("t /cygdrive/C/x --f=/cygdrive/c/y/ a=/cygdrive/c/y -C/cygdrive/c C:\\x").text,
            there + "/x\n--f=" + there + "/y/\na=/cygdrive/c/y\n-C/cygdrive/c\nC:\\x\n");
  EXPECT_EQ(capture("t /cygdrive/q/x \"/cygdrive/C/a  b/\" " + held + " --n=" + held).text,
            "/cygdrive/q/x\n" + there + "/a  b/\na:\"b\xFF\n--n=a:\"b\xFF\n");
}

TEST_F(ProcessTest, AChildHasACleanWorld) {
  fs::create_symlink("/usr/bin/ls", host("tools/ls.exe"));
  EXPECT_EQ(capture("ls.exe nothing").text, "ls: cannot access 'nothing': No such file or directory\n");
  EXPECT_EQ(capture("pwd").text, fs::canonical(host("disk")).string() + "\n");
  const int leaking = open("/dev/null", O_RDONLY);
  EXPECT_EQ(capture("ls.exe /proc/self/fd").text, "0\n1\n2\n3\n");
  close(leaking);
  sigset_t old;
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &blocked, &old);
  const auto handler = signal(SIGPIPE, SIG_IGN);
  const std::string signals = capture("grep -E ^Sig(Blk|Ign) /proc/self/status").text;
  signal(SIGPIPE, handler);
  pthread_sigmask(SIG_SETMASK, &old, nullptr);
  EXPECT_TRUE(signals.starts_with("SigBlk:\t0000000000000000\n")) << signals;
  EXPECT_TRUE(signals.ends_with("0000000\n")) << signals;  // above are the C library's own
}

TEST_F(ProcessTest, TheEnvironmentIsOursToSay) {
  const std::string hostPath = "PATH=:/usr/bin:.:" + host("disk") + "/x:rel:/a;b:/usr/bin/";
  // Every name that the tools would take something from.
  const char* const start[] = {hostPath.c_str(),  "LANGUAGE=de", "PIGZ=-1",         "BZIP=-1",
                               "BZIP2=-1",        "LBZIP2=-1",   "TIME_STYLE=+%s",  "BLOCK_SIZE=1",
                               "QUOTING_STYLE=c", "Path=other",  "LC_ALL=de_DE",    "POSIXLY_CORRECT=1",
                               "GZIP=-1",         "KEPT=a=b",    "KEPT=second",     "noEquals",
                               "TAR_OPTIONS=-h",  "=nameless=x", "LS_BLOCK_SIZE=1", nullptr};
  platform::Environment environment(drives_, start);
  EXPECT_EQ(environment.get("pAtH"), "Z:\\usr\\bin;.;C:\\x;rel;\"Z:\\a;b\";Z:\\usr\\bin");
  EXPECT_EQ(environment.get("kept"), "");
  environment.set("Path",
                  ".;C:\\t\\;;" + environment.get("PATH") + ";Q:\\gone;\\\\s\\x;C:\\a\xEF\x80\xBA;.;");
  environment.set("CYGWIN", "ntsec");
  Words child = environment.forChild();
  std::sort(child.begin(), child.end());
  EXPECT_EQ(child,
            (Words{"CYGWIN=ntsec", "KEPT=a=b", "LC_ALL=C.UTF-8",
                   "PATH=" + host("disk") + "/t:/usr/bin:" + host("disk") + "/x:/a;b:/usr/bin",
                   "QUOTING_STYLE=escape", "TAR_OPTIONS=--sort=name --no-unquote", "TZ=:/etc/localtime"}));
  environment.set("TZ", "");  // universal time
  child = environment.forChild();
  EXPECT_EQ(std::count(child.begin(), child.end(), "TZ="), 1);
  EXPECT_EQ(std::count(child.begin(), child.end(), "TZ=:/etc/localtime"), 0);
  EXPECT_EQ(environment.pathEntries()[1], "C:\\t\\");
  EXPECT_EQ(environment.pathEntries()[6], "Z:\\a;b");
  EXPECT_EQ(environment.pathEntries().size(), 12U);
}

TEST_F(ProcessTest, ACaptureWaitsForABackgroundChildAVisibleRunDoesNot) {
  script("tools/t", "(sleep 0.5; echo late) & echo early");
  EXPECT_EQ(capture("t").text, "early\nlate\n");
  std::string text;
  script("tools/t", "sleep 20 & head -c 300000 /dev/zero; echo early");
  const auto begin = Clock::now();
  const RunResult result = visible("t", [&text](std::string_view bytes) { text += bytes; });
  EXPECT_LT(Clock::now() - begin, 10s);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(text.size(), 300006U);
  EXPECT_TRUE(text.ends_with("early\n"));
}

TEST_F(ProcessTest, StepsComeEvery20MillisecondsWhileOutputFlowsToo) {
  const auto steps = [this](const std::string& commandLine, int status) {
    int count = 0;
    const auto begin = Clock::now();
    EXPECT_EQ(capture(commandLine, [&count] { return ++count > 0; }).status, status) << commandLine;
    EXPECT_LE(count, (Clock::now() - begin) / 20ms) << commandLine;
    return count;
  };
  EXPECT_GE(steps("sleep 0.3", 0), 3);
  EXPECT_GE(steps("timeout 0.3 yes", 124), 3);
  script("tools/t", "exec >&- 2>&-; sleep 0.3; exit 7");  // the end of output is not the end of the tool
  EXPECT_GE(steps("t", 7), 3);
}

TEST_F(ProcessTest, ARunThatIsEndedTakesItsGroupAlongAndHasFailed) {
  script("tools/t", "trap 'echo last; exit 0' TERM; sleep 30 & sleep 0.3; echo go; wait");
  const auto begin = Clock::now();
  const auto steps = [](int most) { return [most, n = 0]() mutable { return ++n < most; }; };
  const auto ignore = [](std::string_view) {};
  EXPECT_TRUE(visible("t", ignore, steps(3)).stopped);
  EXPECT_TRUE(capture("t", steps(20)).stopped);
  EXPECT_LT(Clock::now() - begin, 1900ms);
  script("tools/t", "trap '' TERM; echo $$; sleep 30");
  std::string pid;
  const auto keep = [&pid](std::string_view bytes) { pid += bytes; };
  const RunResult result = visible("t", keep, [&pid] { return pid.empty(); });
  EXPECT_TRUE(result.stopped);
  EXPECT_EQ(result.status, 128 + SIGKILL);
  EXPECT_LT(Clock::now() - begin, 10s);
  EXPECT_EQ(kill(std::stoi(pid), 0), -1);
}

TEST_F(ProcessTest, EndSignalsReachTheToolAndIgnoredOnesStayIgnored) {
  script("tools/t", "touch '" + host("started") + "'; exec sleep 30");
  const pid_t child = fork();
  if (child == 0) {
    signal(SIGHUP, SIG_IGN);
    platform::catchEndSignals();
    raise(SIGHUP);
    if (platform::endSignal() != 0) _exit(1);
    if (capture("t").status != 128 + SIGTERM || platform::endSignal() != SIGTERM) _exit(2);
    pollfd wake = {platform::endSignalDescriptor(), POLLIN, 0};
    _exit(poll(&wake, 1, 0) == 1 ? 0 : 3);
  }
  EXPECT_TRUE(appears("started"));
  kill(child, SIGTERM);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST_F(ProcessTest, ShellOpenStartsTheHandlerAndLeavesNothingBehind) {
  const std::string viewers = drives_.toWindows(host("path"));
  const auto opens = [this](const std::string& what, const std::string& viewersAt) {
    return platform::shellOpen(drives_, environment_, what, "C:\\", viewersAt);
  };
  std::ofstream(host("disk/x.CHM")) << "";
  EXPECT_FALSE(opens("C:\\x.CHM", viewers)) << "there is no viewer";
  for (const std::string program : {"hh.exe", "xdg-open"})
    script("path/" + program, keep("'%s %s %s' \"$PWD\" \"${0##*/}\" \"$1\""));
  EXPECT_FALSE(opens("C:\\y.chm::/a.html", viewers));
  std::ofstream(host("disk/a b")) << "";
  const std::tuple<std::string, std::string, std::string> cases[] = {{"x.CHM", viewers, "hh.exe"},
                                                                     {"x.CHM::/a.html#b", viewers, "hh.exe"},
                                                                     {"x.CHM", "", "xdg-open"},
                                                                     {"a b", viewers, "xdg-open"}};
  for (const auto& [file, viewersAt, program] : cases) {
    EXPECT_TRUE(opens("C:\\" + file, viewersAt));
    EXPECT_EQ(kept(), host("disk") + " " + program + " " + host("disk/") + file);
  }
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST(SystemInfoTest, VariablesSpeakForTheSystem) {
  const auto version = [](const char* text) {
    setenv("PAKRUNE_WINVER", text, 1);
    const auto found = platform::systemVersion();
    return found ? std::vector<int>{found->platformId, found->major, found->minor} : std::vector<int>{};
  };
  EXPECT_EQ(version(""), (std::vector<int>{2, 10, 0}));
  EXPECT_EQ(version("1.4.90"), (std::vector<int>{1, 4, 90}));
  for (const char* text : {"2.10", "2.10.0.1", "x", "2..0", "2.-1.0", "2.10.0 "})
    EXPECT_EQ(version(text), std::vector<int>{}) << text;
  unsetenv("PAKRUNE_WINVER");
  for (const char* value : {"0", ""}) {
    setenv("PAKRUNE_ADMIN", value, 1);
    EXPECT_EQ(platform::isUserAnAdmin(), *value == '\0' && geteuid() == 0) << value;
  }
  unsetenv("PAKRUNE_ADMIN");
}
