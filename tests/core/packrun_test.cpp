#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "archive/PackRunner.h"
#include "platform/HeldName.h"
#include "tests/World.h"

namespace fs = std::filesystem;
using archive::PackOutcome;
using archive::PackSelection;
using archive::PackSettings;

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
  PackOutcome pack(const PackSelection& selection) { return runner_.create(settings_, selection); }
  PackSelection items(const std::vector<std::string>& names, const std::string& folder = "C:\\pkg") const {
    PackSelection selection{folder, {}, {}};
    for (const auto& name : names)
      selection.selectedPaths.push_back(folder + "\\" + platform::holdName(name));
    return selection;
  }
  bool nothingLeft() const {
    const auto isOurs = [](const fs::directory_entry& entry) {
      return entry.path().filename().string().starts_with("_PK");
    };
    const auto walk = fs::recursive_directory_iterator(root_);
    return std::none_of(begin(walk), end(walk), isOurs);
  }

  archive::PackRunner runner_{services()};
  PackSettings settings_;
};

TEST_F(PackRunTest, StoresNumericOwnersAndLogsTheFile) {
  write("pkg/app");
  write("pkg/lib/part");
  settings_.ownerId = 507;
  ASSERT_EQ(pack(items({"lib", "app"})), PackOutcome::Created) << log_.all;
  EXPECT_EQ(members(), "app\nlib/\nlib/part\n");
  EXPECT_NE(output("tar -tvf " + host("out.tgz")).find("507/1 "), std::string::npos);
  EXPECT_EQ(log_.all, " Created file: C:\\out.tgz\n");
  EXPECT_TRUE(person_.told.empty());
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, PacksHostileNamesByteForByte) {
  const std::vector<std::string> names = {"-rf",        "--checkpoint=1", "a b\"c'", "back\\nslash",
                                          "line\nfeed", "bad\xFF\xC3",    "*?",      " lead",
                                          "@x",         "\xEF\x80\xAF"};
  for (const std::string& name : names) write("pkg/" + name, name);
  ASSERT_EQ(pack(items(names)), PackOutcome::Created) << log_.all;
  fs::create_directory(host("back"));
  EXPECT_EQ(output("tar -xf " + host("out.tgz") + " -C " + host("back")), "");
  for (const std::string& name : names) EXPECT_EQ(bytes("back/" + name), name);
}

TEST_F(PackRunTest, PacksManyNamesThroughANamesFile) {
  std::vector<std::string> names = {"-last\\n", "line\nfeed"};
  for (int i = 1000; i < 2000; ++i) names.push_back(std::string(120, 'n') + std::to_string(i));
  for (const std::string& name : names) write("pkg/" + name);
  ASSERT_EQ(pack(items(names)), PackOutcome::Created) << log_.all;
  const std::string listing = members();
  EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), 1002);
  EXPECT_TRUE(listing.starts_with("./-last\\\\n\nline\\nfeed\n")) << listing.substr(0, 40);
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
    ASSERT_EQ(pack(whole), PackOutcome::Created) << log_.all;
    const std::string first = members("pkg/pkg.tgz");
    EXPECT_EQ(first, parent ? "pkg/\npkg/a\npkg/sub/\npkg/sub/b\n" : "a\nsub/\nsub/b\n");
    const std::string firstBytes = bytes("pkg/pkg.tgz");
    whole.paneItems.push_back("pkg.tgz");
    ASSERT_EQ(pack(whole), PackOutcome::Created) << log_.all;
    EXPECT_EQ(members("pkg/pkg.tgz"), first);
    EXPECT_TRUE(parent || bytes("pkg/pkg.tgz") == firstBytes);  // the parent's own time has changed
  }
  settings_.outputPath = "C:\\pkg\\..\\pkg\\sub\\deep.tgz";
  fs::create_directory_symlink("pkg", host("alias"));
  ASSERT_EQ(pack(items({"sub", "a"}, "C:\\alias")), PackOutcome::Created);
  ASSERT_EQ(pack(items({"sub", "a"}, "C:\\alias")), PackOutcome::Created);
  EXPECT_EQ(members("pkg/sub/deep.tgz"), "a\nsub/\nsub/b\n");
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, LeavesItsOwnPlaceOutWhenEverythingIsPacked) {
  write("pkg/tmp/other");
  setenv("TMPDIR", host("pkg/tmp").c_str(), 1);
  settings_.outputPath = "C:\\pkg\\pkg.tgz";
  settings_.parentFolder = true;
  ASSERT_EQ(pack({"C:\\pkg", {}, {"tmp"}}), PackOutcome::Created) << log_.all;
  EXPECT_EQ(members("pkg/pkg.tgz"), "pkg/\npkg/tmp/\npkg/tmp/other\n");
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, AFailingRunKeepsTheOldArchive) {
  write("pkg/a");
  write("out.tgz", "old");
  EXPECT_EQ(pack(items({"a", "gone"})), PackOutcome::Failed);
  EXPECT_EQ(bytes("out.tgz"), "old");
  ASSERT_EQ(person_.told.size(), 2U);
  EXPECT_EQ(person_.told[1],
            "Pakrune: Error|tar.exe -C \"/cygdrive/C/pkg\" -zcv --owner=500 --group=1 --numeric-owner "
            "-f \"/cygdrive/C/out.tgz\" \"a\" \"gone\" ");
  EXPECT_NE(log_.all.find("tar: gone: Cannot stat"), std::string::npos) << log_.all;
  EXPECT_NE(log_.all.find(" Partial archive removed, the earlier file is unchanged: C:\\out.tgz"),
            std::string::npos);
  EXPECT_NE(log_.all.find("Failed command: tar.exe"), std::string::npos);
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, StatusesOfTarHaveTheirBoxes) {
  write("pkg/a");
  const std::string tar = root_ + "/prog/bin/tar.exe";
  fs::remove(tar);
  EXPECT_EQ(pack(items({"a"})), PackOutcome::Failed);
  EXPECT_EQ(person_.told.back(),
            "Pakrune|Error: Unable to locate necessary program files.\rTry reinstalling the application");
  std::ofstream(tar)
      << "#!/bin/sh\n/usr/bin/tar \"$@\"\necho 'tar: a: file changed as we read it' >&2\nexit 1\n";
  chmod(tar.c_str(), 0755);
  EXPECT_EQ(pack(items({"a"})), PackOutcome::Failed);
  EXPECT_EQ(person_.told.back(),
            "Pakrune|Error: An unknown error occurred.\rTry reinstalling Pakrune or Cygwin");
  EXPECT_EQ(members(), "a\n");
  EXPECT_NE(log_.all.find("tar: a: file changed"), std::string::npos);
}

TEST_F(PackRunTest, RefusalsChangeNothing) {
  write("pkg/a");
  write("out.tgz", "old");
  person_.agrees = false;
  EXPECT_EQ(pack(items({"a"})), PackOutcome::Refused);
  EXPECT_EQ(person_.told.back(), "Pakrune|'C:\\out.tgz' already exists.\rOverwrite?");
  EXPECT_EQ(bytes("out.tgz"), "old");
  settings_.outputPath = "C:\\out.ipk";
  EXPECT_EQ(pack(items({"a"})), PackOutcome::UnknownExtension);
  EXPECT_EQ(person_.told.back(), "Output file error..|Unrecognized Tar file extension");
  person_.agrees = true;
  settings_.outputPath = "C:\\nowhere\\out.tgz";
  EXPECT_EQ(pack(items({"a"})), PackOutcome::Failed);
  EXPECT_TRUE(person_.told.back().starts_with("Pakrune: Error|tar.exe"));
  EXPECT_FALSE(runner_.selectionExists(items({"gone"})));
  settings_.outputPath = "C:\\folder.tgz";
  fs::create_directory(host("folder.tgz"));
  EXPECT_EQ(pack(items({"a"})), PackOutcome::Refused);
  EXPECT_EQ(person_.told.back(), "Pakrune|'C:\\folder.tgz' is a folder");
}

TEST_F(PackRunTest, AppendsToATarAndTurnsACompressedOneIntoANewFile) {
  write("pkg/a");
  write("pkg/b");
  settings_.append = true;
  settings_.outputPath = "C:\\out.tar";
  ASSERT_EQ(pack(items({"a"})), PackOutcome::Created) << log_.all;
  chmod(host("out.tar").c_str(), 0600);
  ASSERT_EQ(pack(items({"b"})), PackOutcome::Created) << log_.all;
  EXPECT_EQ(members("out.tar"), "a\nb\n");
  EXPECT_EQ(fs::status(host("out.tar")).permissions(), fs::perms(0600));
  settings_.outputPath = "C:\\out.tgz";
  bool newFile = false;
  EXPECT_EQ(runner_.create(settings_, items({"b"}), [&] { newFile = true; }), PackOutcome::Created);
  EXPECT_TRUE(newFile);
  EXPECT_EQ(person_.told.back(),
            "Unable to Append|Unable to append to a compressed tar archive\rCreate a new file instead?");
}

TEST_F(PackRunTest, StoresUsr8OneLevelUp) {
  write("pkg/a");
  write("pkg/usr8/set.ini");
  fs::create_directory(host("pkg/usr8/locked"));
  chmod(host("pkg/usr8/locked").c_str(), 0555);
  ASSERT_EQ(pack(items({"a", "usr8"})), PackOutcome::Created) << log_.all;
  EXPECT_EQ(members(), "a\n../usr8/\n../usr8/locked/\n../usr8/set.ini\n");
  ASSERT_EQ(pack(items({"usr8"})), PackOutcome::Created);
  EXPECT_EQ(members(), "../usr8/\n../usr8/locked/\n../usr8/set.ini\n");
  ASSERT_EQ(pack({"C:\\", {"C:\\pkg"}, {}}), PackOutcome::Created);
  EXPECT_EQ(members(), "a\n../usr8/\n../usr8/locked/\n../usr8/set.ini\n");
  settings_.stageUsr8 = false;
  ASSERT_EQ(pack(items({"usr8", "a"})), PackOutcome::Created);
  EXPECT_EQ(members(), "a\nusr8/\nusr8/locked/\nusr8/set.ini\n");
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, TheWholeFolderStoresUsr8AsASelectionOfAllDoes) {
  write("pkg/a");
  write("pkg/usr8/set.ini");
  const PackSelection whole{"C:\\pkg", {}, {"usr8", "a"}};
  ASSERT_EQ(pack(whole), PackOutcome::Created) << log_.all;
  EXPECT_EQ(members(), "a\n../usr8/\n../usr8/set.ini\n");
  settings_.parentFolder = true;
  ASSERT_EQ(pack(whole), PackOutcome::Created);
  EXPECT_EQ(members(), "pkg/\npkg/a\npkg/usr8/\npkg/usr8/set.ini\n");
}

/// Modes, numeric owners and sizes of an archive, as three readers see them.
TEST_F(PackRunTest, EveryReaderSeesTheSame) {
  write("pkg/a", "12345");
  chmod(host("pkg/a").c_str(), 0751);
  settings_.ownerId = 507;
  constexpr const char* python =
      "python3 -c 'import tarfile, sys; m = tarfile.open(sys.argv[1]).getmembers()[0]; "
      "print(m.name, oct(m.mode), m.uid, m.gid, m.size)' ";
  for (const std::string name : {"out.tar", "out.tgz", "out.tbz2"}) {
    settings_.outputPath = "C:\\" + name;
    ASSERT_EQ(pack(items({"a"})), PackOutcome::Created) << log_.all;
    EXPECT_TRUE(output("tar --numeric-owner -tvf " + host(name)).starts_with("-rwxr-x--x 507/1 ")) << name;
    const bool hasPython = !output("command -v python3 || true").empty();
    EXPECT_EQ(hasPython ? output(python + host(name)) : "a 0o751 507 1 5\n", "a 0o751 507 1 5\n");
    if (output("command -v bsdtar || true").empty()) continue;
    const std::string listing = output("bsdtar --numeric-owner -tvf " + host(name));
    EXPECT_TRUE(listing.starts_with("-rwxr-x--x  0 507    1 ")) << listing;
  }
}

TEST_F(PackRunTest, InsideUsr8TheSelectionGoesBelowIt) {
  write("pkg/usr8/-x");
  write("pkg/usr8/usr8/inner");
  chmod(host("pkg/usr8").c_str(), 0750);
  const std::string folder = "C:\\pkg\\usr8";
  ASSERT_EQ(pack(items({"-x", "usr8"}, folder)), PackOutcome::Created) << log_.all;
  EXPECT_EQ(members(), "../usr8/\n../usr8/-x\n../usr8/usr8/\n../usr8/usr8/inner\n");
  EXPECT_TRUE(output("tar -P -tvf " + host("out.tgz")).starts_with("drwxr-x---"));
  const std::string first = bytes("out.tgz");
  ASSERT_EQ(pack(items({"-x", "usr8"}, folder)), PackOutcome::Created);
  EXPECT_EQ(bytes("out.tgz"), first);
}

TEST_F(PackRunTest, ACopyThatComplainsStopsThePack) {
  write("pkg/a");
  write("out.tgz", "old");
  EXPECT_EQ(pack(items({"a", "usr8"})), PackOutcome::Failed);
  EXPECT_NE(log_.all.find(" Unable to copy: cp: "), std::string::npos) << log_.all;
  EXPECT_EQ(person_.told.size(), 1U);
  EXPECT_EQ(bytes("out.tgz"), "old");
  EXPECT_TRUE(nothingLeft());
}

TEST_F(PackRunTest, ContentsOnlyHoldsHiddenEntriesLinksAndPipes) {
  write("pkg/box/.hidden");
  write("pkg/box/zdir/x");
  fs::create_symlink("nothing", host("pkg/box/dangling"));
  mkfifo(host("pkg/box/fifo").c_str(), 0600);
  ASSERT_EQ(pack(items({"box"})), PackOutcome::Created) << log_.all;
  EXPECT_EQ(members(), "zdir/\nzdir/x\n.hidden\ndangling\nfifo\n");
  settings_.contentsOnly = false;
  ASSERT_EQ(pack(items({"box"})), PackOutcome::Created);
  EXPECT_TRUE(members().starts_with("box/\nbox/.hidden\n"));
}

}  // namespace
