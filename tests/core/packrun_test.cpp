#include <sys/socket.h>
#include <sys/un.h>

#include <array>

#include "archive/PackJob.h"
#include "archive/ScratchFolder.h"
#include "archive/TarSelection.h"
#include "tests/OnDisk.h"

namespace fs = std::filesystem;
using archive::PackSelection;
using archive::PackSettings;
using runtime::JobEnd;
using testworld::has;
using Names = std::vector<std::string>;

namespace {

/// The world with a folder pkg on its drive.
class PackRunTest : public testworld::World {
 protected:
  PackRunTest() {
    fs::create_directory(host("pkg"));
    findTools();
    settings_.outputPath = "C:\\out.tgz";
  }

  /// The archive's names as plain tar lists them, each ended by a line feed.
  std::string members(const std::string& name = "out.tgz") const {
    return output("tar -P -tf '" + host(name) + "'");
  }
  JobEnd pack(const PackSelection& selection) {
    const platform::Busy::Scope busy(busy_);
    result_ = archive::PackJob(services(), selection, settings_).run();
    return result_.end;
  }
  PackSelection items(const Names& names, const std::string& folder = "C:\\pkg") const {
    PackSelection selection{folder, {}, {}};
    for (const auto& name : names)
      selection.selectedPaths.push_back(folder + "\\" + platform::holdName(name));
    return selection;
  }
  bool nothingLeft() const { return output("find '" + root_ + "' -name '_PK*'").empty(); }
  /// Packs, and gives what the archive holds then.
  std::string packed(const PackSelection& selection) {
    EXPECT_EQ(pack(selection), JobEnd::Done) << log_.all;
    return output("tar -P -tf '" + drives_.toHost(settings_.outputPath).value() + "'");
  }
  /// Packs "a" in vain; what was told last.
  std::string vain(JobEnd end = JobEnd::Failed) {
    EXPECT_EQ(pack(items({"a"})), end);
    return person_.told.empty() ? "" : person_.told.back();
  }
  /// Writes what most tests pack, and an archive that stands in the way.
  void writeOld() const {
    write("pkg/a");
    write("out.tgz", "old");
  }
  /// The earlier archive is as it was, and nothing lies about.
  void expectOld(const std::string& when = "") const {
    EXPECT_EQ(bytes("out.tgz"), "old") << when;
    EXPECT_TRUE(nothingLeft()) << when;
  }
  /// Gives an entry the time 5.
  void age(const std::string& name) const {
    utimensat(AT_FDCWD, host(name).c_str(), std::array<timespec, 2>{{{5, 0}, {5, 0}}}.data(), 0);
  }

  archive::PackResult result_;
  PackSettings settings_;
};

TEST_F(PackRunTest, PacksHostileNamesByteForByteAndManyThroughAFile) {
  Names names = {"-rf", "--checkpoint=1", "a b\"c'", "back\\nslash", "line\nfeed", "bad\xFF\xC3",
                 "*?",  " lead",          "@x",      "\xEF\x80\xAF"};
  for (const bool many : {false, true}) {
    if (many)
      for (const std::string& name : numbered(std::string(120, 'n'), 1000)) names.push_back(name);
    for (const std::string& name : names) write("pkg/" + name, name);
    const std::string listing = packed(items(names));
    EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), std::ssize(names));
    for (const char* part : {"\n./--checkpoint=1\n./-rf\n", "\nback\\\\nslash\n", "\nline\\nfeed\n"})
      EXPECT_TRUE(has(listing, part));
    fs::remove_all(host("back"));
    fs::create_directory(host("back"));
    EXPECT_EQ(output("tar -xf " + host("out.tgz") + " -C " + host("back")), "");
    for (const std::string& name : names) EXPECT_EQ(bytes("back/" + name), name);
  }
}

TEST_F(PackRunTest, PackingTwiceGivesTheSameBytesAndNeverItself) {
  write("pkg/a");
  write("pkg/sub/b");
  settings_.outputPath = "C:\\pkg\\pkg.tgz";
  PackSelection whole{"C:\\pkg", {}, {"sub", "a"}};
  for (const bool parent : {false, true}) {
    settings_.parentFolder = parent;
    fs::remove(host("pkg/pkg.tgz"));
    utimensat(AT_FDCWD, host("pkg").c_str(), nullptr, 0);
    ASSERT_EQ(pack(whole), JobEnd::Done) << log_.all;
    const std::string first = members("pkg/pkg.tgz");
    EXPECT_EQ(first, parent ? "pkg/\npkg/a\npkg/sub/\npkg/sub/b\n" : "a\nsub/\nsub/b\n");
    const std::string firstBytes = bytes("pkg/pkg.tgz");
    whole.paneItems.push_back("pkg.tgz");
    ASSERT_EQ(pack(whole), JobEnd::Done) << log_.all;
    EXPECT_EQ(members("pkg/pkg.tgz"), first);
    EXPECT_TRUE(parent || bytes("pkg/pkg.tgz") == firstBytes);  // the parent's own time has changed
  }
  settings_.outputPath = "C:\\pkg\\..\\pkg\\sub\\deep.tgz";
  fs::create_directory_symlink("pkg", host("alias"));
  for (int times = 0; times < 2; ++times)
    EXPECT_EQ(packed(items({"sub", "a"}, "C:\\alias")), "a\nsub/\nsub/b\n");
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, AFixedTimeIsThatOfTheNewestFile) {
  settings_.newestTime = true;
  for (const char* name : {"pkg/a", "pkg/sub/b", "pkg/usr8/c"}) {
    write(name);
    age(name);
  }
  output("touch -d @1000000000 " + host("pkg/usr8/c"));
  const auto times = [this] {
    return output("tar -P -tvf " + host("pkg/out.tgz") + " --utc | awk '{ print $4 }' | sort -u");
  };
  for (int run = 0; run < 2; ++run) {  // with the earlier archive among the files
    settings_.outputPath = "C:\\pkg\\out.tgz";
    EXPECT_EQ(pack({"C:\\pkg", {}, {"a", "sub", "usr8", "out.tgz"}}), JobEnd::Done) << log_.all;
    EXPECT_EQ(times(), "2001-09-09\n");
    EXPECT_EQ(log_.all.find("Treating date"), std::string::npos);
  }
}

TEST_F(PackRunTest, AFailingRunKeepsTheOldArchive) {
  writeOld();
  EXPECT_EQ(pack(items({"a", "gone"})), JobEnd::Failed);
  expectOld();
  ASSERT_EQ(person_.told.size(), 2U);
  EXPECT_EQ(person_.told[1],
            "Pakrune: Error|tar.exe -C \"/cygdrive/C/pkg\" -zcv --owner=500 --group=1 --numeric-owner "
            "-f \"/cygdrive/C/out.tgz\" \"a\" \"gone\" ");
  for (const char* line : {"tar: gone: Cannot stat", "Failed command: tar.exe",
                           " Partial archive removed, the earlier file is unchanged: C:\\out.tgz"})
    EXPECT_TRUE(has(log_.all, line));
}

TEST_F(PackRunTest, StatusesOfTarHaveTheirBoxes) {
  write("pkg/a");
  fs::remove(root_ + "/prog/bin/tar.exe");
  EXPECT_EQ(vain(),
            "Pakrune|Error: Unable to locate necessary program files.\rTry reinstalling the application");
  tool("tar.exe", "kill -9 $$");
  EXPECT_EQ(pack(items({"a"})), JobEnd::Failed);
  EXPECT_TRUE(has(log_.all, " tar was ended by signal 9\n"));
  tool("tar.exe", "/usr/bin/tar \"$@\"\necho 'tar: a: file changed as we read it' >&2\nexit 1");
  EXPECT_EQ(vain(), "Pakrune|Error: An unknown error occurred.\rTry reinstalling Pakrune or Cygwin");
  EXPECT_EQ(members(), "a\n");
  EXPECT_TRUE(has(log_.all, "tar: a: file changed"));
  person_.readsConsole = true;
  log_.all.clear();
  EXPECT_EQ(pack(items({"a"})), JobEnd::Failed);
  EXPECT_EQ(log_.all.find("tar: a: file changed"), std::string::npos) << "told twice";
}

TEST_F(PackRunTest, RefusalsChangeNothing) {
  writeOld();
  person_.agrees = false;
  EXPECT_EQ(vain(JobEnd::Refused), "Pakrune|'C:\\out.tgz' already exists.\rOverwrite?");
  EXPECT_EQ(bytes("out.tgz"), "old");
  settings_.outputPath = "C:\\out.ipk";
  EXPECT_EQ(vain(JobEnd::Refused), "Output file error..|Unrecognized Tar file extension");
  EXPECT_TRUE(result_.unknownExtension);
  EXPECT_FALSE(selectionExists(services(), items({"gone"})));
}

/// What is known before tar starts is told in words, and no tool runs.
TEST_F(PackRunTest, WhatHindersAPackIsTold) {
  write("pkg/a");
  write("file", "x");
  for (const char* folder : {"folder.tgz", "pkg/empty"}) fs::create_directory(host(folder));
  for (const char* fifo : {"pkg/fifo.tgz", "pkg/fifo.tar"}) mkfifo(host(fifo).c_str(), 0600);
  fs::create_symlink("/dev/null", host("null.tgz"));
  using Case = std::tuple<std::string, std::string, const char*>;
  for (const auto& [output, told, selected] : std::vector<Case>{
           {"folder.tgz", "'C:\\folder.tgz' is a folder", "a"},
           {"pkg\\fifo.tgz", "'C:\\pkg\\fifo.tgz' is not a file", "a"},
           {"pkg\\fifo.tar", "'C:\\pkg\\fifo.tar' is not a file", "a"},
           {"null.tgz", "'C:\\null.tgz' is not a file", "a"},
           {"nowhere\\x.tgz", "Unable to write into 'C:\\nowhere\\':\rNo such file or directory", "a"},
           {"file\\x.tgz", "Unable to write into 'C:\\file\\':\rNot a directory", "a"},
           {"x.tgz", "There is nothing to pack in 'C:\\pkg\\empty'", "empty"}}) {
    settings_.outputPath = "C:\\" + output;
    settings_.append = output.ends_with(".tar");
    EXPECT_EQ(pack(items({selected})), JobEnd::Refused) << output;
    EXPECT_EQ(person_.told.back(), "Pakrune|" + told);
  }
  EXPECT_TRUE(person_.consoles.empty());
  EXPECT_EQ(log_.all, "");
  settings_.outputPath = "C:\\x.tgz";
  fs::create_directories(host("pkg/empty/usr8"));  // something, though no name is listed
  EXPECT_EQ(pack(items({"empty"})), JobEnd::Done) << log_.all;
  setenv("TMPDIR", "/nowhere/tmp", 1);
  EXPECT_EQ(pack(items({"empty"})), JobEnd::Failed);
  EXPECT_TRUE(has(person_.told.back(), "'Z:\\nowhere\\tmp\\':\rNo such file"));
}

TEST_F(PackRunTest, AFolderThatIsClosedOrFullIsToldWithTheSystemsReason) {
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  chmod(root_.c_str(), 0755);
  chmod(host("").c_str(), 0555);
  EXPECT_TRUE(tests::asOrdinaryUser([this] { return files_.writeProblem("C:\\") == EACCES; }));
  writeOld();
  tool("tar.exe", "echo 'tar: /x: Cannot write: No space left on device'; echo half >\"$5\"; exit 2");
  EXPECT_EQ(vain(), "Pakrune|The disk is full: no space is left in 'C:\\'");
  EXPECT_EQ(bytes("out.tgz"), "old");
}

TEST_F(PackRunTest, AStopEndsThePackAndChangesNothing) {
  writeOld();
  write("pkg/usr8/b");
  const auto stop = [this] { busy_.requestStop(); };
  const auto expectStopped = [this](const std::string& when, std::size_t consoles) {
    log_.all.clear();
    person_.told.clear();
    person_.consoles.clear();
    EXPECT_EQ(pack(items({"a", "usr8"})), JobEnd::Stopped) << when;
    EXPECT_EQ(log_.all, " Stopped: creating C:\\out.tgz\n") << when;
    EXPECT_EQ(person_.told.size(), 1U) << when;  // the question
    EXPECT_EQ(person_.consoles.size(), consoles) << when;
    expectOld(when);
    person_.onMessage = person_.onEvents = person_.onClosed = {};
    fs::remove(host("runs"));
  };
  person_.onMessage = stop;
  person_.agrees = false;
  expectStopped("at the question", 0);
  person_.agrees = true;
  person_.onEvents = stop;
  expectStopped("before cp", 0);
  person_.onClosed = stop;
  expectStopped("after a tar that ended well", 1);
  for (const auto& [name, consoles] : {std::pair{"tar.exe", 1U}, {"cp", 0U}}) {
    person_.onEvents = [this, stop] {
      if (fs::exists(host("runs"))) stop();
    };
    tool(name, "echo half >\"$5\"; echo >" + host("runs") + "; exec sleep 20");
    expectStopped(std::string("during ") + name, consoles);
  }
}

TEST_F(PackRunTest, AppendsToATarAndTurnsACompressedOneIntoANewFile) {
  write("pkg/a");
  write("pkg/b");
  settings_.append = true;
  settings_.outputPath = "C:\\out.tar";
  EXPECT_EQ(packed(items({"a"})), "a\n");
  chmod(host("out.tar").c_str(), 0600);
  EXPECT_EQ(packed(items({"b"})), "a\nb\n");
  EXPECT_EQ(tests::modeOf(host("out.tar")), 0600U);
  {
    const tests::FullDisk full(1000);
    EXPECT_EQ(pack(items({"b"})), JobEnd::Failed);
    EXPECT_TRUE(has(person_.told.back(), "tmp':\rFile too large"));
  }
  settings_.outputPath = "C:\\out.tgz";
  EXPECT_EQ(pack(items({"b"})), JobEnd::Done);
  EXPECT_TRUE(result_.madeNew);
  EXPECT_EQ(person_.told.back(),
            "Unable to Append|Unable to append to a compressed tar archive\rCreate a new file instead?");
}

TEST_F(PackRunTest, StoresUsr8OneLevelUp) {
  write("pkg/a");
  write("pkg/usr8/set.ini");
  fs::create_directory(host("pkg/usr8/locked"));
  chmod(host("pkg/usr8/locked").c_str(), 0555);
  const std::string home = "../usr8/\n../usr8/locked/\n../usr8/set.ini\n";
  const PackSelection whole{"C:\\pkg", {}, {"usr8", "a"}};
  EXPECT_EQ(packed(items({"a", "usr8"})), "a\n" + home);
  EXPECT_EQ(packed(items({"usr8"})), home);
  EXPECT_EQ(packed({"C:\\", {"C:\\pkg"}, {}}), "a\n" + home);
  EXPECT_EQ(packed(whole), "a\n" + home);
  settings_.parentFolder = true;
  EXPECT_EQ(packed(whole), "pkg/\npkg/a\npkg/usr8/\npkg/usr8/locked/\npkg/usr8/set.ini\n");
  settings_.stageUsr8 = settings_.parentFolder = false;
  EXPECT_EQ(packed(items({"usr8", "a"})), "a\nusr8/\nusr8/locked/\nusr8/set.ini\n");
  fs::create_hard_link(host("pkg/usr8/set.ini"), host("pkg/usr8/twin"));
  settings_.stageUsr8 = true;
  EXPECT_EQ(pack(items({"usr8"})), JobEnd::Done);
  EXPECT_TRUE(has(output("tar -Ptvf " + host("out.tgz")), "../usr8/twin link to ../usr8/set.ini\n"));
  EXPECT_TRUE(nothingLeft());
}

/// Modes, numeric owners and sizes of an archive, as its readers see them.
TEST_F(PackRunTest, EveryReaderSeesTheSame) {
  write("pkg/a", "12345");
  write("pkg/lib/part");
  chmod(host("pkg/a").c_str(), 0751);
  settings_.ownerId = 507;
  constexpr const char* python =
      " -c 'import tarfile, sys; m = tarfile.open(sys.argv[1]).getmembers()[0]; "
      "print(m.name, oct(m.mode), m.uid, m.gid, m.size)' ";
  for (const auto& [name, letter] :
       {std::pair<std::string, std::string>{"out.tar", ""}, {"out.tgz", "z"}, {"out.tbz2", "j"}}) {
    settings_.outputPath = "C:\\" + name;
    EXPECT_EQ(packed(items({"lib", "a"})), "a\nlib/\nlib/part\n");
    EXPECT_EQ(std::exchange(log_.all, ""), " Created file: C:\\" + name + "\n");
    for (const auto& [reader, options, first] :
         {std::array<std::string, 3>{"tar", " --numeric-owner -tvf ", "-rwxr-x--x 507/1 "},
          {"bsdtar", " --numeric-owner -tvf ", "-rwxr-x--x  0 507    1 "},
          {"busybox", " tar -tv" + letter + "f ", "-rwxr-x--x 507/1 "},
          {"python3", python, "a 0o751 507 1 5\n"}}) {
      const std::string listing = output(reader + options + host(name) + " 2>&1 || true");
      const bool isThere = !output("command -v " + reader + " || true").empty();
      EXPECT_TRUE(!isThere || listing.starts_with(first)) << reader << name << listing;
    }
  }
  EXPECT_TRUE(person_.told.empty() && nothingLeft());
}

TEST_F(PackRunTest, InsideUsr8TheSelectionGoesBelowIt) {
  write("pkg/usr8/-x");
  write("pkg/usr8/usr8/inner");
  chmod(host("pkg/usr8").c_str(), 0750);
  age("pkg/usr8");
  const std::string folder = "C:\\pkg\\usr8";
  EXPECT_EQ(packed(items({"-x", "usr8"}, folder)),
            "../usr8/\n../usr8/-x\n../usr8/usr8/\n../usr8/usr8/inner\n");
  const std::string first = output("TZ= tar -P -tvf " + host("out.tgz")).substr(0, 80);
  EXPECT_TRUE(first.starts_with("drwxr-x---")) << first;
  EXPECT_TRUE(has(first, " 1970-01-01 00:00 ../usr8/\n"));
  const std::string firstBytes = bytes("out.tgz");
  ASSERT_EQ(pack(items({"-x", "usr8"}, folder)), JobEnd::Done);
  EXPECT_EQ(bytes("out.tgz"), firstBytes);
}

TEST_F(PackRunTest, ACopyThatIsNotWholeRefusesThePack) {
  writeOld();
  write("pkg/usr8/b");
  using Case = std::array<std::string, 3>;
  for (const auto& [script, logged, told] : std::vector<Case>{
           {"kill -9 $$", "cp was ended by signal 9", "\rcp was ended by signal 9"},
           {"exit 1", "cp ended with exit code 1", "\rcp ended with exit code 1"},
           {"echo 'cp: not all'", "cp: not all", ""},
           {"echo 'cp: b: No space left on device'; exit 1", "cp: b: No space left on device", "full"}}) {
    tool("cp", script);
    EXPECT_EQ(pack(items({"a", "usr8"})), JobEnd::Failed) << script;
    EXPECT_TRUE(has(log_.all, " Unable to copy: " + logged + "\n"));
    const bool full = told == "full";
    EXPECT_TRUE(person_.told.back().starts_with(full ? "Pakrune|The disk is full"
                                                     : "Pakrune|Unable to copy what is to be packed" + told))
        << person_.told.back();
    expectOld(script);
  }
}

TEST_F(PackRunTest, WhatNobodyWasAskedAboutIsNotReplaced) {
  write("pkg/a");
  tool("tar.exe", "/usr/bin/tar \"$@\"; echo theirs >" + host("out.tgz"));
  EXPECT_TRUE(vain().starts_with("Pakrune|'C:\\out.tgz' has appeared meanwhile"));
  EXPECT_EQ(person_.told.size(), 1U);
  EXPECT_EQ(bytes("out.tgz"), "theirs\n");
  EXPECT_TRUE(nothingLeft());
  EXPECT_EQ(pack(items({"a"})), JobEnd::Done);  // asked, and agreed
}

/// A replaced archive keeps mode and owner; rights of its owner pass to nobody else.
TEST_F(PackRunTest, TheNewArchiveTakesOverModeAndOwner) {
  writeOld();
  ASSERT_TRUE(tests::giveTo(host("out.tgz"), 65534, 65533));
  chmod(host("out.tgz").c_str(), 04640);
  ASSERT_EQ(pack(items({"a"})), JobEnd::Done);
  EXPECT_EQ(tests::modeOf(host("out.tgz")), 04640U);
  EXPECT_TRUE(tests::belongsTo(host("out.tgz"), 65534, 65533));
}

/// Folders of other runs, in use or left behind: of ours by name, lock file and user.
TEST_F(PackRunTest, ScratchFoldersAreNeverPackedAndSweptWhenAbandoned) {
  const std::string lock = archive::ScratchFolder::lockName;
  for (const char* ours : {"sub/deep/_PK000001.tmp/", "_PK000002-3.tmp/", "-PK/", "usr8/_PK000004.tmp/"})
    write("pkg/" + (ours + lock), "");
  for (const char* name : {"sub/deep/_PK000001.tmp/half", "sub/deep/b", "_PK000003.tmp/mine"})
    write(std::string("pkg/") + name);
  age("pkg/sub/deep");
  Names all = {"sub", "_PK000002-3.tmp", "_PK000003.tmp", "-PK"};
  const std::string plain =
      "./-PK/\n./-PK/" + lock + "\n_PK000003.tmp/\n_PK000003.tmp/mine\nsub/\nsub/deep/\nsub/deep/b\n";
  EXPECT_EQ(packed(items(all)), plain);
  settings_.parentFolder = true;
  settings_.outputPath = "C:\\parent.tgz";
  setenv("TMPDIR", host("pkg/sub").c_str(), 1);  // the run's own is one of them, too
  const std::string parent = packed({"C:\\pkg", {}, all});
  for (const char* none : {"_PK000001", "_PK000002", "sub/_PK"}) EXPECT_FALSE(has(parent, none)) << parent;
  settings_.outputPath = "C:\\pkg\\sub\\staged.tgz";
  all.emplace_back("usr8");
  EXPECT_EQ(packed(items(all)), plain + "../usr8/\n");
  EXPECT_TRUE(has(output("tar -tvf " + host("pkg/sub/staged.tgz") + " sub/deep"), "1970-01-01"));
  EXPECT_EQ(pack(items({"_PK000002-3.tmp"})), JobEnd::Refused);

  const auto inUse = platform::LockFile::takeOver(host("pkg/_PK000002-3.tmp/") + lock);
  log_.all.clear();
  { const archive::ScratchFolder next(files_, log_, "C:\\pkg\\"); }
  EXPECT_TRUE(fs::exists(host("pkg/_PK000002-3.tmp")) && fs::exists(host("pkg/_PK000003.tmp/mine")));
  EXPECT_EQ(log_.all, "");
  { const archive::ScratchFolder next(files_, log_, "C:\\pkg\\sub\\deep\\"); }
  EXPECT_FALSE(fs::exists(host("pkg/sub/deep/_PK000001.tmp")));
  EXPECT_EQ(log_.all, " Removed what an ended run left behind: C:\\pkg\\sub\\deep\\_PK000001.tmp\n");

  const archive::ScratchFolder first(files_, log_, "C:\\");
  const archive::ScratchFolder second(files_, log_, "C:\\");
  EXPECT_TRUE(first && second && first.path() != second.path());
  EXPECT_TRUE(archive::isScratchFolder(files_, first.path()));
  if (geteuid() != 0) return;
  ASSERT_EQ(chown((host("") + first.path().substr(3)).c_str(), 65534, 65534), 0);
  EXPECT_FALSE(archive::isScratchFolder(files_, first.path()));  // another user's
}

TEST_F(PackRunTest, WhatDidNotGetInIsTold) {
  write("pkg/a");
  write("pkg/tar: n/tar: x: socket ignored");
  for (const std::string name : {"so:ck", "a/box"}) {
    sockaddr_un address{AF_UNIX, {}};
    if (name == "a/box") fs::create_directory(host("pkg/box"));
    const std::string path = host("pkg/" + (name == "a/box" ? std::string("box/sock") : name));
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const platform::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    ASSERT_EQ(bind(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  EXPECT_EQ(pack(items({"a", "box", "tar: n"})), JobEnd::Done);
  EXPECT_EQ(log_.all, "tar: box/sock: socket ignored\n Created file: C:\\out.tgz\n");
  EXPECT_EQ(pack(items({"a", "so:ck"})), JobEnd::Remarks);
  EXPECT_TRUE(has(log_.all, " Not packed: " + platform::holdName("so:ck") + "\n"));
  settings_.outputPath = "C:\\pkg\\own.tgz";
  write("pkg/own.tgz");
  EXPECT_EQ(pack(items({"a", "own.tgz"})), JobEnd::Remarks);
}

TEST_F(PackRunTest, AnOutputThatIsALinkIsWrittenThrough) {
  write("pkg/a");
  fs::create_directory(host("store"));
  settings_.outputPath = "C:\\pkg\\out.tar";
  fs::create_symlink("../store/real.tar", host("pkg/out.tar"));
  for (const std::string name : {"a", "b"}) {  // the link leads nowhere at first
    write("pkg/" + name);
    settings_.append = name == "b";
    EXPECT_EQ(pack(items({name})), JobEnd::Done) << log_.all;
    EXPECT_TRUE(fs::is_symlink(host("pkg/out.tar")));
    EXPECT_EQ(members("store/real.tar"), name == "b" ? "a\nb\n" : "a\n");
  }
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, ContentsOnlyHoldsHiddenEntriesLinksAndPipes) {
  write("pkg/box/.hidden");
  write("pkg/box/zdir/x");
  fs::create_symlink("nothing", host("pkg/box/dangling"));
  mkfifo(host("pkg/box/fifo").c_str(), 0600);
  EXPECT_EQ(packed(items({"box"})), "zdir/\nzdir/x\n.hidden\ndangling\nfifo\n");
  settings_.contentsOnly = false;
  EXPECT_TRUE(packed(items({"box"})).starts_with("box/\nbox/.hidden\n"));
}

}  // namespace
