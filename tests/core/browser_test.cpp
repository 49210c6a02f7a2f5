#include "browser/FolderListing.h"
#include "browser/ModePass.h"
#include "browser/PaneSort.h"
#include "browser/QuietListing.h"
#include "browser/RefreshPace.h"
#include "browser/SelectedRows.h"
#include "runtime/ImageKeys.h"
#include "runtime/LsLine.h"
#include "tests/OnDisk.h"
#include "tests/OrdinaryUser.h"

namespace {

namespace fs = std::filesystem;
using browser::PaneRow;
using browser::sortKey;
using runtime::JobEnd;
using Names = std::vector<std::string>;
using Pair = std::pair<std::string, std::string>;

PaneRow rowOf(const std::string& name, const std::string& imageKey) {
  PaneRow row;
  row.name = name;
  row.image = runtime::getImageIndex(imageKey);
  return row;
}
PaneRow folder(const std::string& name) { return rowOf(name, "fldr"); }
PaneRow file(const std::string& name, std::int64_t size = 0, const std::string& mode = "") {
  PaneRow row = rowOf(name, platform::extensionOf(name));
  row.size = size;
  row.ls.mode = mode;
  row.isFile = true;
  return row;
}

TEST(LsLine, ColumnsAndTriads) {
  const std::string line = "-rwSr-xr-T+ 1 1000 100 5 Jan  1 00:00 a name\\n";
  EXPECT_EQ(runtime::lsModeColumn(line), "-rwSr-xr-T");
  EXPECT_EQ(runtime::lsModeString(line), "-rwSr-xr-T+");
  EXPECT_EQ(runtime::lsType(line), '-');
  using Of = runtime::LsClass;
  for (const auto& [of, triad] : {std::pair(Of::Owner, "rwS"), {Of::Group, "r-x"}, {Of::Everyone, "r-T"}})
    EXPECT_EQ(runtime::lsTriad(line, of), triad);
  EXPECT_EQ(runtime::lsTriad("-rw", Of::Group), "");
  EXPECT_EQ(runtime::lsType(""), 0);
  EXPECT_EQ(runtime::lsModeString("nothing"), "");
  EXPECT_EQ(runtime::lsModeColumn("ls: \xC3\xA9\xC3\xA9 cannot"), "ls: \xC3\xA9\xC3\xA9 can");
}

TEST(PaneRow, SizesAreThousandsOfBytes) {
  const std::pair<std::int64_t, const char*> sizes[] = {
      {0, "0 KB "},    {-5, "1 KB "},       {999, "1 KB "},          {1000, "1 KB "},
      {1999, "1 KB "}, {999999, "999 KB "}, {12345678, "12345 KB "}, {5000000000, "5000000 KB "}};
  for (const auto& [size, text] : sizes) EXPECT_EQ(browser::sizeText(file("a", size)), text);
  EXPECT_EQ(browser::sizeText(folder("a")), "");
}

TEST(NamePattern, PiecesBetweenStars) {
  for (const auto& [pattern, name] :
       {Pair{"", "any"}, Pair{"*", "any"}, Pair{"*.*", "a.b"}, Pair{"read", "readme.txt"},
        Pair{"*.C", "main.c"}, Pair{"mk", "mkfile"}, Pair{"ab*b", "ab"}, Pair{"a*b*c", "aXXbYc"},
        Pair{"**", ""}, Pair{"a:*", platform::holdName("a:b")}, Pair{"*\xC3\x89*", "x\xC3\xA9"}})
    EXPECT_TRUE(browser::NamePattern(pattern).matches(name)) << pattern << " " << name;
  for (const auto& [pattern, name] : {Pair{"*.*", "nodot"}, Pair{"*.c", "main.cpp"}, Pair{"a*b*c", "ac"},
                                      Pair{"b*", "ab"}, Pair{"a*x*c", "abc"}, Pair{".", "a.b"}})
    EXPECT_FALSE(browser::NamePattern(pattern).matches(name)) << pattern << " " << name;
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

Names sorted(std::vector<PaneRow> rows, browser::PaneOrder order) {
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].place = rows.size() - i;  // sorted before
  Names names;
  for (const std::size_t i : sortedOrder(rows, order)) names.push_back(rows[i].name);
  return names;
}

TEST(PaneSort, FoldersFirstTiesInListingOrder) {
  const std::vector<PaneRow> rows = {file("b"),        file("A"),        folder("z"),
                                     file("\xC3\x89"), file("\xC3\xA9"), folder("Y")};
  EXPECT_EQ(sorted(rows, {1, true}), (Names{"Y", "z", "A", "b", "\xC3\xA9", "\xC3\x89"}));
  EXPECT_EQ(sorted(rows, {1, false}), (Names{"\xC3\xA9", "\xC3\x89", "b", "A", "z", "Y"}));
  EXPECT_EQ(sorted(rows, {3, true}), (Names{"Y", "z", "\xC3\xA9", "\xC3\x89", "A", "b"}));
  EXPECT_EQ(sorted(rows, {3, false}), (Names{"\xC3\xA9", "\xC3\x89", "A", "b", "Y", "z"}));
}

/// What GNU coreutils ls 9.1 prints with LC_ALL=C.UTF-8 and QUOTING_STYLE=escape.
TEST(ModesOf, ARowTakesTheLineThatEndsInItsName) {
  const std::string output =
      "ls: cannot access 'b c': No such file or directory\n"
      "ls: cannot access \"it's\": Permission denied\n"
      "-rw-r--r-- 1 0    0   5 Nov 25 07:07 a\\ b\\nc\\\\\\377\n"
      "-rw------- 1 0    0   5 Nov 25 07:07 ./-rf\n"
      "lrwxrwxrwx 1 0    0   3 Nov 25 07:07 x\\ -> -> to\\ a\n"
      "lrwxrwxrwx 1 0    0   3 Nov 25 07:07 ends\\\\ -> a\n"
      "crw--w---- 1 0    5 4, 1 Nov 25 07:07 directory\n"
      "-r--r--r--+ 1 0 1000 12 Jan  1  2006 c\n";
  const std::vector<Pair> rows = {
      {"b c", "ls: cannot"},  {"a b\nc\\\xFF", "-rw-r--r--"}, {"gone", ""},
      {"-rf", "-rw-------"},  {"x ->", "lrwxrwxrwx"},         {"ends\\", "lrwxrwxrwx"},
      {"it's", "ls: cannot"}, {"directory", "crw--w----"},    {"c", "-r--r--r--"}};
  Names names;
  for (const auto& row : rows) names.push_back(platform::holdName(row.first));
  const browser::BatchModes batch = browser::modesOf(output, names);
  ASSERT_EQ(batch.entries.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_EQ(batch.entries[i].mode, rows[i].second) << rows[i].first;
  EXPECT_EQ(batch.entries[4], (browser::LsEntry{"lrwxrwxrwx", true, 0, 0, "to a"}));
  EXPECT_EQ(batch.entries[8], (browser::LsEntry{"-r--r--r--", true, 0, 1000, ""}));
  EXPECT_FALSE(batch.entries[0].owned);
  EXPECT_EQ(batch.withoutLine, 3U);
  EXPECT_EQ(batch.complaints, 2U);
}

class Listing : public testworld::World, public browser::ListingListener {
 protected:
  Listing() { findTools(); }
  Names names(const browser::ListingChoice& choice) {
    runtime::FileClass found(drives_);
    found.Refresh("C:\\\\*");
    Names all;
    for (const PaneRow& row : browser::paneRows(found, choice)) all.push_back(row.name);
    std::sort(all.begin(), all.end());
    return all;
  }
  JobEnd list() {
    rows_.clear();
    listings_ = batches_ = 0;
    log_.all.clear();
    const platform::Busy::Scope busy(busy_);
    return browser::FolderListing(services(), "C:\\", {}, *this).run().end;
  }
  void rowsFound(std::vector<PaneRow> rows) override {
    rows_ = std::move(rows);
    ++listings_;
  }
  void unreadable(const std::string& why) override { why_ = why; }
  void modesFound(std::size_t first, std::vector<browser::LsEntry> entries) override {
    for (std::size_t i = 0; i < entries.size(); ++i) rows_[first + i].ls = entries[i];
    ++batches_;
    if (stopAtOnce_) busy_.requestStop();
  }
  std::string modeOf(const std::string& name) const {
    for (const PaneRow& row : rows_)
      if (row.name == name) return row.ls.mode;
    return "no row";
  }
  std::ptrdiff_t without() const {
    return std::count_if(rows_.begin(), rows_.end(), [](const PaneRow& row) { return row.ls.mode.empty(); });
  }
  void writeMany(int count) const {
    for (const std::string& name : numbered("f", count)) write(name);
  }

  std::string why_;
  std::vector<PaneRow> rows_;
  int listings_ = 0;
  int batches_ = 0;
  bool stopAtOnce_ = false;
};

TEST(RefreshPace, QuietPatienceAndRest) {
  using std::chrono::milliseconds;
  const browser::RefreshPace::Clock::time_point start{};
  browser::RefreshPace pace;
  EXPECT_FALSE(pace.due());
  pace.changed(start);
  pace.changed(start + milliseconds(400));
  EXPECT_EQ(*pace.due() - start, milliseconds(900)) << "half a second of quiet";
  pace.changed(start + milliseconds(2900));
  EXPECT_EQ(*pace.due() - start, milliseconds(3000)) << "three seconds at the latest";
  pace.rest(start + milliseconds(100), milliseconds(600));
  EXPECT_EQ(*pace.due() - start, milliseconds(6100)) << "ten times as long as the last look";
  pace.forget();
  EXPECT_FALSE(pace.due());
}

TEST_F(Listing, VisibilityAndFilters) {
  for (const char* name : {"a.JPG", "b.tif", "c.txt", "none", "main.c", ".hid.gif"}) write(name);
  fs::create_directory(host("sub.txt"));
  fs::create_directory(host(".dot"));
  EXPECT_EQ(names({false, false, 0, 10, ""}),
            (Names{"a.JPG", "b.tif", "c.txt", "main.c", "none", "sub.txt"}));
  EXPECT_EQ(names({true, false, 2, 10, ""}), (Names{".dot", ".hid.gif", "a.JPG", "b.tif", "sub.txt"}));
  EXPECT_EQ(names({false, false, 9, 10, "*.c"}), (Names{"main.c", "sub.txt"}));
  EXPECT_EQ(names({false, false, -1, 10, ""}).size(), 6U);
}

TEST_F(Listing, HostileNamesGetTheirOwnModes) {
  const Names hostNames = {"my file", "-rf",     "--help",      "two\nlines",
                           "ta\tb",   "q\"uote", "back\\slash", "wide \xE4\xB8\xAD",
                           "bad\xFF", "*",       "$(x)",        "'q'"};
  const auto mode = [](std::size_t i) { return i % 2 == 0 ? "-rw-r-----" : "-r--r--r--"; };
  for (std::size_t i = 0; i < hostNames.size(); ++i) {
    write(hostNames[i]);
    chmod(host(hostNames[i]).c_str(), i % 2 == 0 ? 0640 : 0444);
  }
  for (const auto& [name, bits] : {std::pair("set", 07645), {"dark", 07111}}) {
    write(name);
    chmod(host(name).c_str(), static_cast<mode_t>(bits));
  }
  fs::create_symlink("nowhere", host("dangling"));
  ASSERT_EQ(mkfifo(host("fifo").c_str(), 0600), 0);
  EXPECT_EQ(list(), JobEnd::Done);
  EXPECT_EQ(rows_.size(), hostNames.size() + 4);
  for (std::size_t i = 0; i < hostNames.size(); ++i)
    EXPECT_EQ(modeOf(platform::holdName(hostNames[i])), mode(i)) << hostNames[i];
  for (const PaneRow& row : rows_)
    EXPECT_EQ(row.ls, browser::lsEntryOf(host(platform::releaseName(row.name)))) << row.name;
  EXPECT_EQ(modeOf("dangling"), "lrwxrwxrwx");
  EXPECT_EQ(modeOf("fifo"), "prw-------");
  EXPECT_EQ(listings_, 1);
}

TEST_F(Listing, RunsOfTwoHundred) {
  EXPECT_EQ(browser::modeCommand(std::vector<std::string>{"-b", "c"}),
            "ls.exe -lnd --sort=none --group-directories-first \"./-b\" \"c\" ");
  for (const int count : {0, 200, 201}) {
    writeMany(count);
    list();
    EXPECT_EQ(batches_, (count + 199) / 200);
  }
  EXPECT_EQ(without(), 0);
  EXPECT_EQ(log_.all, "");
}

TEST_F(Listing, WhatVanishedIsListedOnceMoreAndShiftsNothing) {
  for (const char* name : {"a", "b", "c"}) write(name);
  fs::permissions(host("a"), fs::perms::owner_read);
  tool("ls.exe", "rm -f '" + host("b") + "'; PATH=/usr/bin exec ls \"$@\"");
  EXPECT_EQ(list(), JobEnd::Done);
  EXPECT_EQ(listings_, 2);
  EXPECT_EQ(rows_.size(), 2U);
  EXPECT_EQ(modeOf("a") + modeOf("c"), "-r---------rw-r--r--");
  tool("ls.exe", "/usr/bin/ls \"$@\" | head -n 1");
  list();
  EXPECT_EQ(listings_, 2) << "the further listing asks for none";
  EXPECT_EQ(without(), 1);
}

TEST_F(Listing, AnLsThatFailsIsToldOnceAndLeavesItsRowsEmpty) {
  writeMany(201);
  const std::string unable = " Unable to read permissions in C:\\: ls ";
  for (const auto& [script, reason] :
       {Pair{"/usr/bin/ls \"$@\" | head -n 50; kill -9 $$", "was ended by signal 9\n"},
        Pair{"echo broken; exit 1", "ended with exit code 1\n"}}) {
    tool("ls.exe", script);
    EXPECT_EQ(list(), JobEnd::Remarks);
    EXPECT_EQ(log_.all, unable + reason);
    EXPECT_EQ(without(), 201);
    EXPECT_EQ(listings_, 1);
  }
  fs::remove(root_ + "/prog/bin/ls.exe");
  environment_.set("PATH", "");
  EXPECT_EQ(list(), JobEnd::Remarks);
  EXPECT_EQ(log_.all, unable + "could not be started: No such file or directory\n");
}

TEST_F(Listing, AStopLeavesTheRowsAndIsLoggedOnce) {
  writeMany(401);
  stopAtOnce_ = true;
  EXPECT_EQ(list(), JobEnd::Stopped);
  EXPECT_EQ(without(), 201);
  EXPECT_EQ(log_.all, " Stopped: listing C:\\\n");
  {
    const platform::Busy::Scope stopped(busy_);
    busy_.requestStop();
    EXPECT_EQ(list(), JobEnd::Stopped);
    EXPECT_EQ(listings_, 0) << "no step of a job that was stopped before";
    EXPECT_EQ(log_.all, "");
  }
  fs::rename(host(""), root_ + "/away");  // a drive that is not ready
  EXPECT_EQ(list(), JobEnd::Refused);
  EXPECT_EQ(listings_, 0);
}

TEST_F(Listing, AFolderThatCannotBeReadSaysWhy) {
  chmod(root_.c_str(), 0755);
  chmod(host("").c_str(), 0755);
  fs::create_directory(host("closed"));
  chmod(host("closed").c_str(), 0);
  fs::create_directory(host("empty"));
  const auto told = [this](const char* folder) {
    browser::FolderListing(services(), folder, {}, *this).listRows();
    return why_ + log_.all;
  };
  EXPECT_TRUE(tests::asOrdinaryUser([&] {
    return told("C:\\empty").empty() &&
           told("C:\\closed") == "Permission denied Unable to read folder: C:\\closed (Permission denied)\n";
  }));
  write("closed/x");
  chmod(host("closed").c_str(), 0744);
  EXPECT_TRUE(tests::asOrdinaryUser([&] {
    browser::QuietListing quiet(drives_, "C:\\closed", {});
    std::optional<browser::QuietListing::Found> found;
    for (int tries = 0; tries < 500 && !found; ++tries) {
      usleep(10000);
      found = quiet.take();
    }
    return found && found->rows.size() == 1 && found->rows.front().ls == browser::LsEntry();
  })) << "what nobody may ask of has a row too";
}

TEST_F(Listing, SelectionsAndBothWaysOfCounting) {
  runtime::Selection selection;
  std::vector<browser::SelectedEntry> many;
  for (const std::string& name : numbered("f", 2600)) many.push_back({name, name == "f7" || name == "f9"});
  fs::create_directory(host("f7"));
  fs::create_directory(host("target"));
  fs::create_directory_symlink("target", host("f8"));
  const auto counts = browser::rebuildSelection(selection, files_, "C:\\", many);
  EXPECT_EQ(counts.folders, 2U);
  EXPECT_EQ(selection.selectedPaths.size(), 2600U);
  EXPECT_EQ(selection.selectedPaths.back(), "C:\\f2599");
  EXPECT_EQ(browser::summaryText(
                browser::rebuildSelection(selection, files_, "C:\\", {{"f7", true}, {"f8"}, {"f9", true}})),
            "3 items (1 files, 2 folders)");
  EXPECT_EQ(selection.selectedCount(), 3U);
}

}  // namespace
