#include "platform/StartProgram.h"

#include "tests/OnDisk.h"

namespace fs = std::filesystem;

namespace {

/// The user's folder C:\ is in PATH and holds a cmd.exe and an explorer that must never run.
class StartProgramTest : public testworld::World {
 protected:
  StartProgramTest() {
    for (const char* name : {"disk/cmd.exe", "disk/cmd", "disk/explorer", "disk/explorer.exe"})
      script(name, "echo >'" + root_ + "/wrong'");
    tool("cmd.exe", keep("%s \"$#|$1|$PWD|$(tr '\\0' '\\n' </proc/$$/environ | grep ^PAKRUNE_DRIVES)|\""
                         "\"$TAR_OPTIONS\""));
    script("disk/xdg-open", keep("%s \"$#|$1\""));
    environment_.set("PATH", "C:\\;" + environment_.get("PATH"));
    fs::create_directory(host("a  b & c"));
  }
  ~StartProgramTest() override { EXPECT_FALSE(fs::exists(root_ + "/wrong")); }

  void script(const std::string& name, const std::string& text) const {
    std::ofstream(root_ + "/" + name) << "#!/bin/sh\n" << text << "\n";
    chmod((root_ + "/" + name).c_str(), 0755);
  }
  std::string start(const std::string& command, const std::string& folder = "C:\\") {
    return platform::startProgram(drives_, environment_, {command, folder, program_});
  }
};

}  // namespace

TEST_F(StartProgramTest, TheConsoleGetsTheRestAsOneArgument) {
  const std::string table = "PAKRUNE_DRIVES=C=" + root_ + "/disk;Z=/;";
  setenv("PAKRUNE_DRIVES", "C=/nowhere", 1);
  for (const std::string rest :
       {"/c \"\"C:\\Tools\\wdx.exe\" -i \"a  $(id) `id` %PATH% ^ | > <.tgz\"\" & pause", " two  blanks ",
        ""}) {
    EXPECT_EQ(start("cmd.exe " + rest, "C:\\a  b & c"), "");
    EXPECT_EQ(kept(), "1|" + rest + "|" + host("a  b & c") + "|" + table + "|");
  }
  unsetenv("PAKRUNE_DRIVES");
  EXPECT_EQ(start("cmd.exe"), "");
  EXPECT_EQ(kept(), "1||" + root_ + "/disk|" + table + "|");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // nobody to wait for
}

TEST_F(StartProgramTest, ATableThatCannotBeSaidIsNotChangedIntoAnother) {
  platform::DriveTable drives({{'C', root_ + "/disk"}, {'D', "/media/a;b"}, {'Z', "/"}});
  setenv("PAKRUNE_DRIVES", "mine", 1);
  EXPECT_EQ(platform::startProgram(drives, environment_, {"cmd.exe x", "", program_}), "");
  unsetenv("PAKRUNE_DRIVES");
  EXPECT_TRUE(testworld::has(kept(), "|PAKRUNE_DRIVES=mine|"));
}

TEST_F(StartProgramTest, ExplorerTakesTheWholeRestAsOneFolder) {
  EXPECT_EQ(start("explorer C:\\a  b & c", "C:\\gone"), "");
  EXPECT_EQ(kept(), "1|" + host("a  b & c"));
  for (const std::string none : {" C:\\gone", " C:\\cmd.exe", " "})
    EXPECT_EQ(start("explorer" + none), "there is no folder" + none);
  fs::remove(host("xdg-open"));
  environment_.set("PATH", "C:\\");
  EXPECT_EQ(start("explorer C:\\"), "no file manager of this desktop can be started");
}

TEST_F(StartProgramTest, WhatDoesNotStartSaysWhy) {
  for (const char* other : {"", " cmd.exe /c x", "cmd /c x", "explorer.exe C:\\", "C:\\cmd.exe x",
                            ".\\cmd.exe x", "\"cmd.exe\" x", "sh -c x"})
    EXPECT_TRUE(testworld::has(start(other), "is no program that can be started here")) << other;
  EXPECT_EQ(start(std::string("cmd.exe a\0b", 11)), "the command holds a character that ends it early");
  EXPECT_EQ(start("cmd.exe x", "C:\\gone"), "there is no folder C:\\gone");
  const std::string console = program_ + "bin\\cmd.exe";
  fs::permissions(root_ + "/prog/bin/cmd.exe", fs::perms(0644));
  EXPECT_EQ(start("cmd.exe x"), console + " cannot be started: Permission denied");
  fs::remove(root_ + "/prog/bin/cmd.exe");
  EXPECT_EQ(start("cmd.exe x"), console + " cannot be started: No such file or directory");
}

TEST_F(StartProgramTest, ItOutlivesTheProgramWithASessionAndSignalsOfItsOwn) {
  tool("cmd.exe", "read -r line <'" + root_ + "/fifo'\n" +
                      keep("%s \"$line|$(grep SigIgn /proc/self/status)|$(ls -m /proc/self/fd)\""));
  ASSERT_EQ(mkfifo((root_ + "/fifo").c_str(), 0600), 0);
  const pid_t starter = fork();
  if (starter == 0) {
    setpgid(0, 0);
    signal(SIGTERM, SIG_IGN);
    open("/dev/null", O_RDONLY);  // is not passed on
    open("/dev/null", O_RDONLY);
    _exit(start("cmd.exe x").empty() ? 0 : 1);
  }
  int status = -1;
  waitpid(starter, &status, 0);
  EXPECT_EQ(status, 0);
  kill(-starter, SIGKILL);  // what had stayed in its group
  std::ofstream(root_ + "/fifo") << "go\n";
  EXPECT_EQ(kept(), "go|SigIgn:\t0000000000000000|0, 1, 2, 3");
}
