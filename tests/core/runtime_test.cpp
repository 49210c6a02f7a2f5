#include <sys/file.h>

#include <thread>

#include "runtime/DirExists.h"
#include "runtime/NameCount.h"
#include "runtime/PermissionTest.h"
#include "tests/OnDisk.h"

using runtime::ToCygwinPath;

namespace fs = std::filesystem;

namespace {

/// Starts nothing; keeps what it was asked and answers as told.
class RecordingRunner : public platform::CommandRunner {
 public:
  platform::RunResult capture(const platform::StartRequest& request, const platform::WaitStep&) override {
    requests.push_back(request);
    return answer;
  }
  platform::RunResult runVisible(const platform::StartRequest& request, const platform::OutputSink& sink,
                                 const platform::WaitStep& step) override {
    sink(answer.text);
    return capture(request, step);
  }
  std::vector<platform::StartRequest> requests;
  platform::RunResult answer{"said", 0, 0, false};
};

class RuntimeTest : public testworld::World {
 protected:
  std::string path() const { return environment_.get("Path"); }
  std::string bin() const { return program_ + "bin\\"; }
  void removeTool(const std::string& name) const { fs::remove(root_ + "/prog/bin/" + name); }
  runtime::modAPI recorded() { return runtime::modAPI(recordedSystem_, person_); }

  RecordingRunner runner_;
  platform::System recordedSystem_{drives_, files_, environment_, registry_, userSettings_, runner_, busy_};
};

TEST(ModAPI, PathsPixelsAndNames) {
  const std::pair<const char*, const char*> paths[] = {
      {"", ""},
      {"d:\\", "\"/cygdrive/d/\""},
      {"C:\\Data\\my files", "\"/cygdrive/C/Data/my files\""},
      {"\\\\server\\share\\x", "\"//server/share/x\""},
      {"sub\\a:b.txt", "\"sub/ab.txt\""},
      {"C:\\a\" -x \"", "\"/cygdrive/C/a\xEF\x80\xA2 -x \xEF\x80\xA2\""}};
  for (const auto& [path, cygwin] : paths) EXPECT_EQ(ToCygwinPath(path), cygwin);
  EXPECT_EQ(runtime::PixelsToTwips(1, 96), 15);
  EXPECT_EQ(runtime::PixelsToTwips(1, 576), 2);  // 2.5, halves to even
  EXPECT_EQ(runtime::PixelsToTwips(3, 576), 8);  // 7.5
  EXPECT_EQ(runtime::PixelsToTwips(1, 0), 0);
  for (const std::string path : {"C:\\a\\b", "b"})
    EXPECT_EQ(runtime::getFilePath(path) + "|" + runtime::GetFileName(path),
              path.substr(0, path.size() - 1) + "|b");
}

TEST(GetOSVersion, NamesTheSystemsOfTheTable) {
  using Row = std::pair<platform::SystemVersion, const char*>;
  for (const auto& [version, name] :
       {Row{{1, 4, 0}, "95"}, Row{{1, 4, 10}, "98"}, Row{{1, 4, 90}, ""}, Row{{2, 3, 51}, "3.51"},
        Row{{2, 4, 0}, "4.0"}, Row{{2, 5, 0}, "2000"}, Row{{2, 5, 1}, "NT"}, Row{{2, 5, 2}, ""},
        Row{{2, 10, 0}, ""}, Row{{3, 1, 0}, "Failed"}})
    EXPECT_EQ(runtime::GetOSVersion(version), name) << version.major << '.' << version.minor;
  EXPECT_EQ(runtime::GetOSVersion(std::nullopt), "");
}

TEST_F(RuntimeTest, RunsTakePlaceInTheirFoldersAndKeepTextAndStatus) {
  runtime::modAPI api = recorded();
  EXPECT_EQ(api.RunCapture(bin(), "ls.exe -l").text, "said");
  EXPECT_EQ(api.RunCapture(bin(), "ls.exe -l", "C:\\").text, "said");
  EXPECT_EQ(api.currentFolder(), bin());
  EXPECT_EQ(person_.yields, 2);
  for (const char* folder : {"C:\\", "C:\\nowhere"}) api.SetCurDir(folder);
  runner_.answer.status = 2;
  const runtime::ToolResult run = api.RunAndWait({"Creating x"}, "tar.exe -cf x");
  EXPECT_EQ(run.text + std::to_string(run.status), "said2");
  EXPECT_EQ(person_.consoles, std::vector<std::string>{"Creating x"});
  EXPECT_FALSE(busy_.held());
  std::string folders;
  for (const auto& request : runner_.requests)
    folders += request.workingFolder + "|" + request.toolFolder + "\n";
  EXPECT_EQ(folders, bin() + "|" + bin() + "\nC:\\|" + bin() + "\nC:\\|\n");  // the last may be the user's
  runner_.answer = {"", platform::notStarted, 2, false};
  EXPECT_EQ(api.RunCapture(bin(), "gone").text, runtime::startFailure);
  EXPECT_TRUE(person_.told.empty());
  runner_.answer.pipeFailed = true;
  EXPECT_EQ(api.RunCapture(bin(), "ls.exe").text, "");
  EXPECT_EQ(person_.told, std::vector<std::string>{"Pakrune|CreatePipe failed. Error: 2"});
  runner_.answer = {"said", 0, 0, false};
  for (const std::string version : {"95", "98", "3.51", "4.0", "Failed", "NT"}) {  // old ones start none
    runner_.requests.clear();
    api.setOsVersion(version);
    const bool starts = version == "NT";
    EXPECT_EQ(api.RunCapture(bin(), "ls.exe").text, starts ? "said" : runtime::startFailure) << version;
    EXPECT_EQ(runner_.requests.size(), starts ? 1U : 0U) << version;
  }
}

TEST_F(RuntimeTest, AStopEndsARunAndLetsNoneBegin) {
  const platform::Busy::Scope job(busy_);
  person_.onEvents = [this] { person_.yields > 2 ? busy_.requestStop() : void(); };
  const runtime::ToolResult ended = api_.RunCapture(bin(), "sleep 30");
  EXPECT_TRUE(ended.stopped);
  EXPECT_EQ(ended.status, 128 + SIGTERM);
  for (const auto& never : {api_.RunAndWait({}, "sleep 30"), api_.RunCapture(bin(), "ls.exe")}) {
    EXPECT_TRUE(never.stopped && !never.good());
    EXPECT_EQ(never.status, platform::notStarted);
  }
  EXPECT_TRUE(person_.consoles.empty());
}

TEST(NameCount, CountsNamesAmongRemarksHoweverTheyAreCut) {
  const std::string output = "a\ntar: a: file changed\nlib/\ntar\nb";
  for (std::size_t cut = 0; cut <= output.size(); ++cut) {
    runtime::NameCount count;
    EXPECT_EQ(count.done(), 0U);
    count.add(output.substr(0, cut));
    count.add(output.substr(cut));
    EXPECT_EQ(count.named(), 3U) << cut;
    EXPECT_EQ(count.done(), 2U);
  }
}

TEST(Busy, RemembersTheWidestWishAndDoesItOnceAfterwards) {
  using Width = platform::Busy::Width;
  platform::Busy busy;
  std::string done;
  const auto deed = [&](const char* name) { return [&done, name] { done += name; }; };
  busy.whenFree(Width::Relist, deed("now "));
  {
    const platform::Busy::Scope job(busy);
    {
      const platform::Busy::Scope step(busy);
      busy.whenFree(Width::OpenFolder, deed("first "));
      busy.whenFree(Width::OpenFolder, deed("later "));
      busy.whenFree(Width::Relist, deed("list "));
    }
    EXPECT_EQ(done, "now ");
    busy.requestStop();
    EXPECT_TRUE(busy.stopRequested());
  }
  EXPECT_EQ(done, "now later ");
  {
    const platform::Busy::Scope next(busy);
    EXPECT_FALSE(busy.stopRequested());  // a stop is one job's
    busy.whenFree(Width::Relist, deed("never"));
    busy.requestEnd();
  }
  EXPECT_EQ(done, "now later ");
  const platform::Busy::Scope late(busy);
  EXPECT_TRUE(busy.stopRequested());  // the program ends: nothing begins
}

TEST_F(RuntimeTest, FindsTheMountedRootBeforeTheProgramsOwn) {
  cygwin_.FindCygwinRoot();
  EXPECT_EQ(cygwin_.cygwinRoot(), program_);
  const auto mount = [this](const char* key, const std::string& folder) {
    registry_.write(platform::Hive::LocalMachine, key, "native", {platform::ValueType::Text, folder});
    cygwin_.FindCygwinRoot();
  };
  mount("software\\Wow6432Node\\Cygnus Solutions\\Cygwin\\mounts v2\\/", std::string("C:\\cyg64\0", 9));
  EXPECT_EQ(cygwin_.cygwinRoot(), "C:\\cyg64\\");
  mount("software\\Cygnus Solutions\\Cygwin\\mounts v2\\/", "C:\\cyg\\");
  EXPECT_EQ(cygwin_.cygwinRoot(), "C:\\cyg\\");
  cygwin_.CheckCygwinTools();  // nothing there: the program's own folder serves
  EXPECT_EQ(cygwin_.cygwinRoot(), program_);
  EXPECT_EQ(cygwin_.cygwinBin(), bin());
  EXPECT_TRUE(person_.told.empty());
}

TEST_F(RuntimeTest, SearchPathGetsTheToolsInFront) {
  environment_.set("PATH", "C:\\x");
  for (int times = 0; times < 2; ++times) {
    cygwin_.AddDotToPath();
    EXPECT_EQ(path(), "C:\\x;.;");
  }
  cygwin_.FindCygwinRoot();
  cygwin_.CheckCygwinTools();
  EXPECT_EQ(path(), bin() + ";C:\\x;.;");
  EXPECT_EQ(environment_.get("CYGWIN"), "ntsec smbntsec");
  for (const auto& [before, after] : {std::pair<std::string, std::string>("C:\\x", ".;" + bin() + ";C:\\x"),
                                      {";" + bin() + ";.;", ";" + bin() + ";.;"}}) {
    environment_.set("Path", before);
    cygwin_.SetCygwinEnvironment();
    EXPECT_EQ(path(), after);
  }
}

TEST_F(RuntimeTest, AProgramFolderMayHoldASemicolon) {
  fs::rename(root_ + "/prog", root_ + "/pr;og");
  const std::string folder = drives_.toWindows(root_ + "/pr;og") + "\\";
  runtime::CygwinEnvironment cygwin(system_, api_, person_, folder);
  environment_.set("Path", "C:\\x");
  cygwin.FindCygwinRoot();
  cygwin.CheckCygwinTools();
  EXPECT_EQ(path(), ".;\"" + folder + "bin\\\";C:\\x");
  EXPECT_EQ(api_.RunAndWait({}, "tar.exe --version").status, 0);  // found through the search path alone
}

TEST_F(RuntimeTest, MissingToolsAreReportedOnce) {
  const auto misses = [this](const std::string& tool) {
    person_.told.clear();
    runtime::CygwinEnvironment fresh(system_, api_, person_, program_);
    fresh.FindCygwinRoot();
    fresh.CheckCygwinTools();
    EXPECT_EQ(person_.told, std::vector{"Error|Please make sure Cygwin binaries (" + tool +
                                        ") are properly installed\r\nTry reinstalling Pakrune or Cygwin"});
    return fresh.cygwinBin();
  };
  removeTool("ls.exe");
  misses("ls.exe");
  fs::rename(root_ + "/prog/bin/tar.exe", root_ + "/prog/bin/TAR.EXE");
  EXPECT_EQ(misses("tar.exe"), "");  // in upper case it counts as missing
  link("tar", "tar.exe");
  for (const char* tool : {"chmod.exe", "tar.exe"}) {
    removeTool(tool);
    EXPECT_EQ(misses("tar.exe"), "");
  }
}

TEST_F(RuntimeTest, DirExistsMakesEveryLevel) {
  std::string path = "C:\\a b\\c\\d\\";
  EXPECT_EQ(runtime::DirExists(files_, path), 0);
  EXPECT_EQ(path, "C:\\a b\\c\\d");
  EXPECT_TRUE(fs::is_directory(host("a b/c/d")));
  for (std::string odd : {"", "\\", "Q:\\x\\y", "\\\\server\\share"})
    EXPECT_EQ(runtime::DirExists(files_, odd), ENOENT);
  std::string longest = "C:\\" + std::string(300, 'n') + "\\x";
  EXPECT_EQ(runtime::DirExists(files_, longest), ENAMETOOLONG);  // of the level that could not be made
}

TEST_F(RuntimeTest, PermissionTestTellsWhatFailed) {
  findTools();
  int notices = 0;
  const auto test = [&] {
    log_.all.clear();
    runtime::RunPermissionTest(services(), [&notices] { ++notices; });
    return log_.all;
  };
  EXPECT_EQ(test(), "");
  tool("chmod.exe", "");  // silent, and without effect
  EXPECT_EQ(test(), "ERROR: Permission test failed (chmod.exe)\n");
  EXPECT_EQ(notices, 0);
  stored_.RegWriteString(platform::Hive::LocalMachine, "SOFTWARE\\Halvoren Inc\\Pakrune", "FirstRun", "1");
  test();
  EXPECT_EQ(notices, 1);
  tool("chmod.exe", "echo \"$@\"");
  EXPECT_TRUE(test().starts_with("ERROR: Unable to Set Permissions (chmod.exe)\r\n777 "));
  removeTool("chmod.exe");
  EXPECT_EQ(test(), "ERROR: Unable to Set Permissions (chmod.exe)\n");
  EXPECT_FALSE(fs::exists(root_ + "/prog/test123456789"));
  const int other = open((root_ + "/prog").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(other, LOCK_EX), 0);  // another program's test runs
  std::thread ends([other] {
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    close(other);
  });
  const auto begin = std::chrono::steady_clock::now();
  test();
  EXPECT_GT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(100));
  ends.join();
  fs::create_directory(root_ + "/prog/test123456789");
  EXPECT_TRUE(test().starts_with("Permission test not run: ")) << log_.all;
}

}  // namespace
