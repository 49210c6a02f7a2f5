#include <gtest/gtest.h>

#include "archive/FileDrop.h"
#include "archive/PackCommand.h"
#include "archive/PackedRoots.h"

using archive::NameList;
using archive::PackSelection;
using archive::PackSettings;
using runtime::ArchiveKind;

namespace {

NameList listed(bool nothingSelected = false) {
  NameList list;
  list.workingFolder = "C:\\my pkg";
  list.names = {"a", "b c"};
  list.nothingSelected = nothingSelected;
  return list;
}

PackSelection one(const std::string& path) { return {"C:\\pkg", {path}, {}}; }

TEST(ArchiveKind, IsExactAndTakesTheLastDot) {
  EXPECT_EQ(runtime::archiveKind("C:\\a.tar.gz"), ArchiveKind::Gzip);
  EXPECT_EQ(runtime::archiveKind("a.tbz"), ArchiveKind::Bzip2);
  EXPECT_EQ(runtime::archiveKind("a.tgz.ipk"), ArchiveKind::Ipk);
  for (const char* path : {"a.TGZ", "C:\\a.tgz\\file", "tar", "", "a.tar "})
    EXPECT_FALSE(runtime::archiveKind(path)) << path;
  EXPECT_TRUE(runtime::IsArchiveName("A.TbZ2"));
  EXPECT_FALSE(runtime::IsArchiveName("a.ipk"));
}

TEST(PackCommand, ProposesAnOutputBesideTheSelection) {
  EXPECT_EQ(proposedOutput(one("C:\\pkg\\lib.d"), true), "C:\\pkg\\lib.d.tgz");
  EXPECT_EQ(proposedOutput(one("C:\\pkg\\app.v2.bin"), false), "C:\\pkg\\app.v2.tgz");
  EXPECT_EQ(proposedOutput(one("C:\\my.pkg\\app"), false), "C:\\my.pkg\\app.tgz");
  EXPECT_EQ(archive::proposedOutput({"C:\\pkg", {}, {"a"}}, false), "C:\\pkg\\pkg.tgz");
  EXPECT_EQ(archive::proposedOutput({"C:\\", {"C:\\a", "C:\\b"}, {}}, false), "C:\\.tgz");
}

TEST(PackCommand, ComposesTheThreeForms) {
  PackSettings settings;
  const NameList list = listed();
  const std::string names = archive::quotedNames(list.names);
  EXPECT_EQ(tarCommand(settings, ArchiveKind::Gzip, 'c', list, names, "", "C:\\my pkg\\x.tgz"),
            "tar.exe -C \"/cygdrive/C/my pkg\" -zcv --owner=500 --group=1 --numeric-owner "
            "-f \"/cygdrive/C/my pkg/x.tgz\" \"a\" \"b c\" ");
  settings.setGroup = false;
  EXPECT_EQ(tarCommand(settings, ArchiveKind::Tar, 'r', listed(true), names, "", "C:\\x.tar"),
            "tar.exe -C \"/cygdrive/C/my pkg\" -rv --numeric-owner --owner=500 "
            "-f \"/cygdrive/C/x.tar\" \"a\" \"b c\" ");
  settings.setOwner = false;
  settings.setGroup = true;
  EXPECT_EQ(tarCommand(settings, ArchiveKind::Bzip2, 'c', list, names, "C:\\_PK.tmp\\tmp", "C:\\x.tbz"),
            "tar.exe -C \"/cygdrive/C/_PK.tmp/tmp\" -jcvP --group=1 --numeric-owner "
            "-f \"/cygdrive/C/x.tbz\" \"a\" \"b c\"  ../usr8");
  settings.setGroup = false;
  EXPECT_EQ(archive::ownerOptions(settings), "");
}

TEST(PackCommand, LeavesOnlyAPlainFolderUnquoted) {
  EXPECT_EQ(archive::quotedNames({"pkg/"}), "pkg/");
  EXPECT_EQ(archive::quotedNames({"my pkg/"}), "\"my pkg/\" ");
}

TEST(PackCommand, Usr8IsOnUnlessAnotherTextIsStored) {
  EXPECT_TRUE(archive::usr8Support(""));
  EXPECT_TRUE(archive::usr8Support("1"));
  for (const char* text : {"0", "01", "yes", " 1"}) EXPECT_FALSE(archive::usr8Support(text)) << text;
}

TEST(PackCommand, ATypedNameWithoutExtensionGetsThatOfItsFilter) {
  EXPECT_EQ(archive::withArchiveExtension("C:\\my.pkg\\app", 1), "C:\\my.pkg\\app.tgz");
  EXPECT_EQ(archive::withArchiveExtension("C:\\app", 2), "C:\\app.tar");
  EXPECT_EQ(archive::withArchiveExtension("C:\\app", 3), "C:\\app.tbz2");
  EXPECT_EQ(archive::withArchiveExtension("C:\\app.bin", 1), "C:\\app.bin");
}

TEST(FileDrop, IsAHeaderAndThePathEndedTwice) {
  const std::string block = archive::fileDropBlock("C:\\a.tgz");
  EXPECT_EQ(block, std::string("\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0C:\\a.tgz\0\0", 30));
}

TEST(PackedRoots, NameWhatLiesInAPackedFolderOnly) {
  const std::vector<archive::PackedRoot> roots = {{"C:\\pkg\\sub", "sub"}, {"C:\\pkg\\usr8", "../usr8"}};
  EXPECT_EQ(memberName(roots, "C:\\pkg\\sub\\deep\\x.tgz"), "sub/deep/x.tgz");
  EXPECT_EQ(memberName(roots, "C:\\pkg\\usr8\\x.tgz"), "../usr8/x.tgz");
  EXPECT_EQ(memberName(roots, "C:\\pkg\\subway\\x.tgz"), "");
}

}  // namespace
