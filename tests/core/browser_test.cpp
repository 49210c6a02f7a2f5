#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "browser/FoldCase.h"
#include "browser/ModePass.h"
#include "browser/PaneRows.h"
#include "browser/PaneSort.h"
#include "browser/SelectedRows.h"
#include "platform/HeldName.h"
#include "runtime/ImageKeys.h"
#include "runtime/LsLine.h"
#include "tests/World.h"

namespace {

namespace fs = std::filesystem;
using browser::matchPattern;
using browser::PaneRow;
using browser::sortKey;

PaneRow file(const std::string& name, std::int64_t size = 0, const std::string& mode = "") {
  PaneRow row;
  row.name = name;
  row.size = size;
  row.mode = mode;
  row.image = runtime::getImageIndex(platform::extensionOf(name));
  row.isFile = true;
  return row;
}

PaneRow folder(const std::string& name) {
  PaneRow row;
  row.name = name;
  row.image = runtime::getImageIndex("fldr");
  return row;
}

TEST(LsLine, ColumnsAndTriads) {
  const std::string line = "-rwSr-xr-T+ 1 1000 100 5 Jan  1 00:00 a name\\n";
  EXPECT_EQ(runtime::lsModeColumn(line), "-rwSr-xr-T");
  EXPECT_EQ(runtime::lsModeString(line), "-rwSr-xr-T+");
  EXPECT_EQ(runtime::lsType(line), '-');
  EXPECT_EQ(runtime::lsTriad(line, runtime::LsClass::Owner), "rwS");
  EXPECT_EQ(runtime::lsTriad(line, runtime::LsClass::Group), "r-x");
  EXPECT_EQ(runtime::lsTriad(line, runtime::LsClass::Everyone), "r-T");
  EXPECT_EQ(runtime::lsTriad("-rw", runtime::LsClass::Group), "");
  EXPECT_EQ(runtime::lsType(""), 0);
  EXPECT_EQ(runtime::lsModeString("nothing"), "");
  EXPECT_EQ(runtime::lsModeColumn("ls: \xC3\xA9\xC3\xA9 cannot"), "ls: \xC3\xA9\xC3\xA9 can");
  EXPECT_EQ(runtime::lsLines("a\n\nb"), (std::vector<std::string>{"a", ""}));
}

TEST(PaneRow, SizesAreThousandsOfBytes) {
  const std::pair<std::int64_t, const char*> sizes[] = {
      {0, "0 KB "},    {-5, "1 KB "},       {999, "1 KB "},          {1000, "1 KB "},
      {1999, "1 KB "}, {999999, "999 KB "}, {12345678, "12345 KB "}, {5000000000, "5000000 KB "}};
  for (const auto& [size, text] : sizes) EXPECT_EQ(browser::sizeText(file("a", size)), text);
  EXPECT_EQ(browser::sizeText(folder("a")), "");
}

TEST(MatchPattern, PiecesBetweenStars) {
  for (const auto& [pattern, name] :
       std::vector<std::pair<const char*, const char*>>{{"", "any"},
                                                        {"*", "any"},
                                                        {"*.*", "a.b"},
                                                        {"read", "readme.txt"},
                                                        {"*.C", "main.c"},
                                                        {"mk", "mkfile"},
                                                        {"ab*b", "ab"},
                                                        {"a*b*c", "aXXbYc"},
                                                        {"**", ""},
                                                        {"a:*",
                                                         "a\xEF\x80\xBA"
                                                         "b"},
                                                        {"*\xC3\x89*", "x\xC3\xA9"}})
    EXPECT_TRUE(matchPattern(pattern, name)) << pattern << " " << name;
  for (const auto& [pattern, name] : std::vector<std::pair<const char*, const char*>>{{"*.*", "nodot"},
                                                                                      {"*.c", "main.cpp"},
                                                                                      {"a*b*c", "ac"},
                                                                                      {"b*", "ab"},
                                                                                      {"a*x*c", "abc"},
                                                                                      {".", "a.b"}})
    EXPECT_FALSE(matchPattern(pattern, name)) << pattern << " " << name;
}

TEST(PaneSort, KeysAreThoseOfEachColumn) {
  setenv("TZ", "UTC", 1);
  tzset();
  PaneRow row = file("Name", 12345678, "-rw-r--r--");
  row.modified = 1136214245;  // 2006-01-02 15:04:05
  EXPECT_EQ(sortKey(row, 1), "Name");
  EXPECT_EQ(sortKey(row, 2), "\r-rw-r--r--");
  EXPECT_EQ(sortKey(row, 3), "000012345 KB");
  EXPECT_EQ(sortKey(row, 4), "2006/01/02 PM 03:04:05");
  row.modified = 1136160000;  // midnight
  EXPECT_EQ(sortKey(row, 4), "2006/01/02 AM 12:00:00");
  PaneRow sub = folder("Name");
  sub.modified = row.modified;
  EXPECT_EQ(sortKey(sub, 1), "\rName");
  EXPECT_EQ(sortKey(sub, 3), "0");
  EXPECT_EQ(sortKey(sub, 4), "\r2006/01/02 AM 12:00:00");
}

std::vector<std::string> sorted(std::vector<PaneRow> rows, browser::PaneOrder order) {
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].place = rows.size() - i;  // sorted before
  std::vector<std::string> names;
  for (const std::size_t i : sortedOrder(rows, order)) names.push_back(rows[i].name);
  return names;
}

TEST(PaneSort, FoldersFirstTiesInListingOrder) {
  const std::vector<PaneRow> rows = {file("b"),        file("A"),        folder("z"),
                                     file("\xC3\x89"), file("\xC3\xA9"), folder("Y")};
  using Names = std::vector<std::string>;
  EXPECT_EQ(sorted(rows, {1, true}), (Names{"Y", "z", "A", "b", "\xC3\xA9", "\xC3\x89"}));
  EXPECT_EQ(sorted(rows, {1, false}), (Names{"\xC3\xA9", "\xC3\x89", "b", "A", "z", "Y"}));
  EXPECT_EQ(sorted(rows, {3, true}), (Names{"Y", "z", "\xC3\xA9", "\xC3\x89", "A", "b"}));
  EXPECT_EQ(sorted(rows, {3, false}), (Names{"\xC3\xA9", "\xC3\x89", "A", "b", "Y", "z"}));
}

class Listing : public testworld::World {
 protected:
  Listing() { findTools(); }
  std::vector<std::string> names(const browser::ListingChoice& choice) {
    runtime::FileClass found(drives_);
    found.Refresh("C:\\\\*");
    std::vector<std::string> all;
    for (const PaneRow& row : browser::paneRows(found, choice)) all.push_back(row.name);
    std::sort(all.begin(), all.end());
    return all;
  }
  std::vector<std::string> modes(const std::vector<std::string>& names) {
    std::vector<std::string> all;
    browser::runModePass(api_, cygwin_.cygwinBin(), "C:\\", names, [&](std::size_t first, const auto& some) {
      EXPECT_EQ(first, batches_++ * browser::modeBatch);
      all.insert(all.end(), some.begin(), some.end());
      return !stopAtOnce_;
    });
    return all;
  }
  std::size_t batches_ = 0;
  bool stopAtOnce_ = false;
};

TEST_F(Listing, VisibilityAndFilters) {
  for (const char* name : {"a.JPG", "b.tif", "c.txt", "none", "main.c", ".hid.gif"}) write(name);
  fs::create_directory(host("sub.txt"));
  fs::create_directory(host(".dot"));
  using Names = std::vector<std::string>;
  EXPECT_EQ(names({false, false, 0, 10, ""}),
            (Names{"a.JPG", "b.tif", "c.txt", "main.c", "none", "sub.txt"}));
  EXPECT_EQ(names({true, false, 2, 10, ""}), (Names{".dot", ".hid.gif", "a.JPG", "b.tif", "sub.txt"}));
  EXPECT_EQ(names({false, false, 9, 10, "*.c"}), (Names{"main.c", "sub.txt"}));
  EXPECT_EQ(names({false, false, -1, 10, ""}).size(), 6U);
}

TEST_F(Listing, HostileNamesGetTheirOwnModes) {
  std::vector<std::string> hostNames = {"my file", "-rf",     "--help",      "two\nlines",
                                        "ta\tb",   "q\"uote", "back\\slash", "wide \xE4\xB8\xAD",
                                        "bad\xFF", "*",       "$(x)",        "'q'"};
  std::vector<std::string> held;
  for (const std::string& name : hostNames) {
    write(name);
    held.push_back(platform::holdName(name));
  }
  for (std::size_t i = 0; i < hostNames.size(); ++i)
    fs::permissions(host(hostNames[i]), static_cast<fs::perms>(i % 2 == 0 ? 0640 : 0444));
  fs::create_symlink("nowhere", host("dangling"));
  ASSERT_EQ(mkfifo(host("fifo").c_str(), 0600), 0);
  held.insert(held.end(), {"dangling", "fifo"});
  const std::vector<std::string> found = modes(held);
  ASSERT_EQ(found.size(), held.size());
  for (std::size_t i = 0; i < hostNames.size(); ++i)
    EXPECT_EQ(found[i], i % 2 == 0 ? "-rw-r-----" : "-r--r--r--") << hostNames[i];
  EXPECT_EQ(found[found.size() - 2], "lrwxrwxrwx");
  EXPECT_EQ(found.back(), "prw-------");
}

TEST_F(Listing, RunsOfTwoHundred) {
  std::vector<std::string> all;
  for (int i = 0; i < 201; ++i) {
    all.push_back("f" + std::to_string(i));
    write(all.back());
  }
  EXPECT_EQ(browser::modeCommand({"a", "-b", "c"}, 1, 2),
            "ls.exe -lnd --sort=none --group-directories-first \"./-b\" \"c\" ");
  EXPECT_EQ(modes(all).size(), 201U);
  EXPECT_EQ(batches_, 2U);
  all.pop_back();
  batches_ = 0;
  EXPECT_EQ(modes(all).size(), 200U);
  EXPECT_EQ(batches_, 1U);
  batches_ = 0;
  EXPECT_TRUE(modes({}).empty());
  EXPECT_EQ(batches_, 0U);
  all.insert(all.end(), 300, "f1");
  stopAtOnce_ = true;
  EXPECT_EQ(modes(all).size(), 200U);
}

TEST_F(Listing, AMissingEntryTakesALineAndAMissingToolNone) {
  write("a");
  write("c");
  const std::vector<std::string> found = modes({"a", "gone", "c"});
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(std::count(found.begin(), found.end(), "ls: cannot"), 1);
  fs::remove(root_ + "/prog/bin/ls.exe");
  environment_.set("PATH", "");
  batches_ = 0;
  EXPECT_TRUE(modes({"a"}).empty());
}

TEST_F(Listing, SelectionsAndBothWaysOfCounting) {
  runtime::Selection selection;
  std::vector<std::string> many;
  for (int i = 0; i < 2600; ++i) many.push_back("f" + std::to_string(i));
  fs::create_directory(host("f7"));
  fs::create_directory(host("target"));
  fs::create_directory_symlink("target", host("f8"));
  const auto counts = browser::rebuildSelection(selection, files_, "C:\\", many);
  EXPECT_EQ(counts.folders, 2U);
  EXPECT_EQ(selection.selectedPaths.size(), 2600U);
  EXPECT_EQ(selection.selectedPaths.back(), "C:\\f2599");
  EXPECT_EQ(browser::summaryText(browser::rebuildSelection(selection, files_, "C:\\", {"f7", "f8", "f9"})),
            "3 items (1 files, 2 folders)");
  EXPECT_EQ(selection.selectedCount(), 3U);
}

}  // namespace
