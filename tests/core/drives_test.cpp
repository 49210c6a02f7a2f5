#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/DriveTable.h"
#include "platform/HeldName.h"

using platform::DriveTable;
using platform::holdName;
using platform::releaseName;
using platform::shownName;

namespace {

const DriveTable twoDrives({{'c', "/srv/a/"}, {'D', "/srv/a/deep//"}});

bool isInnerName(std::string_view text) {
  return text.find_first_of("\\:*?\"<>|") == text.npos &&
         std::none_of(text.begin(), text.end(), [](char c) { return c >= 0 && c < 0x20; });
}

}  // namespace

TEST(HeldName, HoldsWhatAWindowsNameCannotSay) {
  EXPECT_EQ(holdName("a b.tgz"), "a b.tgz");
  EXPECT_EQ(holdName("caf\xC3\xA9"), "caf\xC3\xA9");
  EXPECT_EQ(holdName("a\"b"),
            "a\xEF\x80\xA2"
            "b");
  EXPECT_EQ(holdName("\xFF"), "\xEF\x83\xBF");
  EXPECT_EQ(holdName("\xEF\x80\x81"), "\xEF\x83\xAF\xEF\x82\x80\xEF\x82\x81");  // a real U+F001
  EXPECT_EQ(holdName("\xED\xA0\x80"), "\xEF\x83\xAD\xEF\x82\xA0\xEF\x82\x80");  // a surrogate
  EXPECT_EQ(shownName(holdName("a\\b\n\xE9?caf\xC3\xA9")), "a\\b\\x0A\\xE9?caf\xC3\xA9");
  const std::string towards = "\xD8\x9C\xE2\x80\xAE\xE2\x81\xA9";  // U+061C, U+202E, U+2069
  EXPECT_EQ(holdName(towards), towards);
  EXPECT_EQ(shownName(towards + "\xE2\x80\xB0\xD8\xA7"),
            "\\xD8\\x9C\\xE2\\x80\\xAE\\xE2\\x81\\xA9\xE2\x80\xB0\xD8\xA7");
}

TEST(HeldName, ATypedCodeNeverBecomesASeparatorOrADot) {
  EXPECT_EQ(releaseName("\xEF\x80\xAF"), "\xEF\x80\xAF");  // U+F02F
  EXPECT_EQ(twoDrives.toHost("C:\\\xEF\x80\xAE\xEF\x80\xAE\\x"), "/srv/a/\xEF\x80\xAE\xEF\x80\xAE/x");
  EXPECT_EQ(twoDrives.toHost("C:\\a\xEF\x80\x80z"), std::nullopt);  // a held NUL would cut the path
}

TEST(HeldName, AnyBytesComeBackExactly) {
  std::mt19937 random(4711);
  const std::string_view likely("\xEF\x80\x81\xBF\xF0\xED\xA0\xC3\xA9\\:*?\"<>|\n\x7F.a \xFF\xC0", 24);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes;
    for (auto length = random() % 12 + 1; length > 0; --length)
      bytes += random() % 4 == 0 ? static_cast<char>(random()) : likely[random() % likely.size()];
    const std::string inner = holdName(bytes);
    ASSERT_EQ(releaseName(inner), bytes);
    ASSERT_TRUE(isInnerName(inner));
    ASSERT_EQ(releaseName(holdName(inner)), inner);
    if (bytes.find_first_of(std::string_view("/\0", 2)) != bytes.npos || bytes == ".") continue;
    ASSERT_EQ(twoDrives.toHost(twoDrives.toWindows("/srv/a/" + bytes + "/x")), "/srv/a/" + bytes + "/x");
  }
}

TEST(DriveTable, ReadsTheFormsOfAPath) {
  for (const char* path :
       {"C:\\pkg\\a", "c:/pkg/a", "C:\\\\pkg\\.\\a\\", "/cygdrive/c/pkg/a", "/cygdrive/C\\pkg/./a"})
    EXPECT_EQ(twoDrives.toHost(path), "/srv/a/pkg/a") << path;
  EXPECT_EQ(twoDrives.toHost("C:\\pkg\\..\\a"), "/srv/a/pkg/../a");
  EXPECT_EQ(twoDrives.toHost("/cygdrive/d"), "/srv/a/deep");
  EXPECT_EQ(twoDrives.toHost("z:\\"), "/");
  for (const char* path : {"", "C", "\\\\server\\share", "//server/share", "E:\\a", "pkg\\a", "C:pkg",
                           "\\pkg", "/cygdrive/", "/cygdrive/cd/a", "/srv/a", "1:\\a"})
    EXPECT_EQ(twoDrives.toHost(path), std::nullopt) << path;
}

TEST(DriveTable, TheLongestDriveNamesAHostPath) {
  EXPECT_EQ(twoDrives.toWindows("/srv/a"), "C:\\");
  EXPECT_EQ(twoDrives.toWindows("/srv/a/deep/x/"), "D:\\x");
  EXPECT_EQ(twoDrives.toWindows("/srv/a/deeper"), "C:\\deeper");
  EXPECT_EQ(twoDrives.toWindows("/srv/ab"), "Z:\\srv\\ab");
  EXPECT_EQ(twoDrives.toWindows("/srv/a/./p//../q"), "C:\\p\\..\\q");
  EXPECT_EQ(twoDrives.toWindows("/"), "Z:\\");
  EXPECT_EQ(twoDrives.toWindows("/srv/a/x\\y:z"), "C:\\x\xEF\x81\x9Cy\xEF\x80\xBAz");
}

TEST(DriveTable, TextReplacesTheTable) {
  const DriveTable given = DriveTable::fromText("d=/mnt/b;Z=/srv/z;bad;Q=relative;D=/other;", "/home/u");
  EXPECT_EQ(given.toHost("D:\\x"), "/mnt/b/x");
  EXPECT_EQ(given.toHost("Y:\\x"), "/x");
  EXPECT_EQ(given.drives().size(), 3U);
  const DriveTable home = DriveTable::fromText("", "/home/u");
  EXPECT_EQ(home.toHost("C:\\x"), "/home/u/x");
  EXPECT_EQ(home.toWindows("/etc"), "Z:\\etc");
}

TEST(DriveTable, WithEveryLetterTakenTheRootStillHasAName) {
  std::vector<DriveTable::Drive> drives;
  for (char letter = 'A'; letter <= 'Z'; ++letter) drives.push_back({letter, std::string("/m/") + letter});
  EXPECT_EQ(DriveTable(drives).toWindows("/etc"), "Z:\\etc");
}

TEST(DriveTable, AVolumeKeepsItsLetter) {
  DriveTable drives = DriveTable::fromText("", "/home/u");
  drives.showVolumes({"/media/u/one", "/media/u/two"});
  const std::string two = drives.toWindows("/media/u/two");
  drives.showVolumes({"/media/u/three"});
  EXPECT_EQ(drives.toWindows("/media/u/two"), "Z:\\media\\u\\two");
  EXPECT_NE(drives.toWindows("/media/u/three"), two);
  drives.showVolumes({"/media/u/two", "/media/u/three"});
  EXPECT_EQ(drives.toWindows("/media/u/two"), two);
}
