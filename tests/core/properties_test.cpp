#include "browser/Properties.h"

#include <array>
#include <thread>

#include "browser/PropertiesLayout.h"
#include "browser/SizeCount.h"
#include "browser/SizeText.h"
#include "browser/SizeWalk.h"
#include "tests/OnDisk.h"

namespace {

namespace fs = std::filesystem;
using browser::CountedSize;
using browser::PropertiesRecord;
using browser::PropertiesWidths;
using browser::Rect;
using browser::SizeCount;

TEST(SizeText, UnitsAndHalves) {
  const browser::NumberTexts texts = {[](std::uint64_t number) { return "g" + std::to_string(number); },
                                      [](double number, int decimals) {
                                        char text[50];
                                        snprintf(text, sizeof text, "%.*f", decimals, number);
                                        return std::string(text);
                                      }};
  const std::pair<std::uint64_t, const char*> sizes[] = {
      {0, "0 bytes"},
      {1023, "1023 bytes"},
      {1024, "1.00 KB (g1024 bytes)"},
      {1024 + 128, "1.13 KB (g1152 bytes)"},
      {1048575, "1024.00 KB (g1048575 bytes)"},
      {1048576, "1.00 MB (g1048576 bytes)"},
      {1073741824, "1.00 GB (g1073741824 bytes)"},
      {9007198186367877, "8388607.00 GB (g9007198186367877 bytes)"},  // just below half a hundredth
      {~std::uint64_t{0}, "17179869184.00 GB (g18446744073709551615 bytes)"}};
  for (const auto& [size, text] : sizes) EXPECT_EQ(browser::formatFSOSize(size, texts), text);
}

TEST(PropertiesLayout, RowsStandBelowEachOtherAndTheWindowFitsTheWidest) {
  using Tops = std::map<std::string, int>;
  const std::tuple<PropertiesWidths, int, Tops> cases[] = {
      {{{}, 5, {}, 7, {}}, 4400, {{"lblLocation", 240}, {"lblSize", 600}, {"lblModified", 960}}},
      {{{}, {}, 2399, {}, {}}, 4400, {{"lblSize", 240}}},
      {{{}, {}, 2401, {}, 600}, 4401, {{"lblSize", 240}, {"lblPermissions", 600}}},
      {{3000, 20, 30, {}, {}}, 5000, {{"lblInfo", 240}, {"lblLocation", 960}, {"lblSize", 1320}}},
      {{{}, 90000, 30, {}, {}}, 9000, {{"lblLocation", 240}, {"lblSize", 600}}}};
  for (const auto& [widths, width, wantedTops] : cases) {
    auto layout = browser::doLayout(widths, 9000);
    EXPECT_EQ(layout.width, width);
    const Rect button = layout.rects["cmdOK"];
    EXPECT_EQ(button.left, (width - button.width) / 2);
    const Rect line = layout.rects["Line1"];
    EXPECT_EQ(line.left + line.width, widths.lblInfo ? width - 720 : 0);
    for (const char* none : {"cmdOK", "Line1"}) layout.rects.erase(none);
    Tops tops;
    for (const auto& [name, rect] : layout.rects) {
      EXPECT_LE(rect.left + rect.width, width) << name;
      EXPECT_LE(rect.top + rect.height, button.top) << name;
      EXPECT_EQ(tops.emplace(name.substr(0, name.find("Title")), rect.top).first->second, rect.top) << name;
    }
    EXPECT_EQ(tops, wantedTops);
  }
}

class Properties : public testworld::World {
 protected:
  Properties() { findTools(); }
  PropertiesRecord record(const std::vector<std::string>& selected, const std::string& folder = "C:\\",
                          const std::vector<std::string>& rows = {}) {
    return browser::propertiesOf(services(), {selected}, folder, rows).value();
  }
  static std::string textOf(const PropertiesRecord& record) {
    return record.propTitle + '|' + record.propInfo + '|' + record.propLocation + '|' +
           record.propPermissions + '|' + std::to_string(record.propModified.value_or(0));
  }
  std::string modeOf(const std::string& hostName) {
    return record({"C:\\" + platform::holdName(hostName)}).propPermissions;
  }
  CountedSize counted(const std::vector<std::string>& items) const {
    const SizeCount count(drives_, items);
    while (!count.soFar().ended) std::this_thread::yield();
    return count.soFar();
  }
  std::uint64_t walked(
      const std::string& name, const platform::Stop& stop = {},
      const std::function<void(browser::OpenFolder&)>& give = [](auto&) {}) const {
    return browser::sizeBelow(browser::openFolder(AT_FDCWD, host(name).c_str()), stop, give);
  }
  /// DEPTH folders within each other, with a file in each and two empty folders beside the next one. Which of
  /// the three goes on changes, so that in any order of reading something is left for the way up.
  void makeDeep(const std::string& name, int depth) const {
    fs::create_directory(host(name));
    int at = open(host(name).c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < depth; ++i) {
      for (const char* folder : {"one", "two", "three"}) mkdirat(at, folder, 0755);
      const int file = openat(at, "file", O_WRONLY | O_CREAT, 0644);
      EXPECT_EQ(::write(file, "1234567", 7), 7);
      close(file);
      const int below = openat(at, std::array{"one", "two", "three"}[static_cast<std::size_t>(i % 3)],
                               O_RDONLY | O_DIRECTORY);
      close(at);
      at = below;
    }
    close(at);
  }
};

TEST_F(Properties, ARecordForOneForManyAndForTheFolder) {
  for (const char* name : {"src/a.txt", "src/b", "src/sub/c", "top"}) write(name);
  fs::permissions(host("src/a.txt"), fs::perms(0640));
  fs::create_symlink("nothing", host("src/dangling"));
  const std::string src = "C:\\src\\";
  const std::vector<std::string> rows = {"sub", "a.txt", "b", "dangling"};
  const auto text = [&](const std::vector<std::string>& names) {
    std::vector<std::string> paths;
    for (const std::string& name : names) paths.push_back(src + name);
    return textOf(record(paths, src, rows));
  };
  const auto modified = [this](const char* name) {
    return std::to_string(tests::statusOf(host(name)).st_mtime);
  };
  EXPECT_EQ(text({"a.txt"}), "a.txt Properties||" + src + "|-rw-r-----|" + modified("src/a.txt"));
  EXPECT_EQ(text({"sub"}), "sub Properties||" + src + "|drwxr-xr-x|" + modified("src/sub"));
  EXPECT_EQ(text({"dangling"}), "dangling Properties||" + src + "|lrwxrwxrwx|0");
  EXPECT_EQ(text({"b", "dangling", "sub", "vanished"}), "Properties|2 files, 1 folders|" + src + "||0");
  EXPECT_TRUE(text({}).starts_with("src Properties|3 files, 1 folders|C:\\||"));
  EXPECT_TRUE(
      textOf(record({}, "C:\\", {"src", "top"})).starts_with("C:\\ Properties|1 files, 1 folders|||"));
  EXPECT_EQ(browser::itemsOf({}, src, {"sub", "b"}), (std::vector<std::string>{src + "sub", src + "b"}));
  EXPECT_EQ(browser::itemsOf({{src + "b"}}, src, rows), std::vector<std::string>{src + "b"});
}

TEST_F(Properties, TheModeIsThatOfTheNamesOwnLine) {
  const std::string names[] = {"-a",     "--help",  " lead", "a b",      "a\nd 1",
                               "a -> b", "q\"uote", "\xFF",  "directory"};
  for (const std::string& name : names) {
    write(name);
    fs::permissions(host(name), fs::perms(0604));
    EXPECT_EQ(modeOf(name), "-rw----r--") << name;
    fs::remove(host(name));
    EXPECT_EQ(modeOf(name), "") << name << ": what ls complains of is no mode";
  }
  write("a");
  tool("ls.exe", "echo 'drwx 1 b'; echo '-rwsr-xr-x+ 1 a'; echo 'brw 1 c'");
  EXPECT_EQ(modeOf("a"), "-rwsr-xr-x+");
  tool("ls.exe", "echo \"$@\" >'" + host("asked") + "'; pwd >>'" + host("asked") + "'");
  modeOf("-a");
  EXPECT_EQ(bytes("asked"), "-lnd ./-a\n" + root_ + "/disk\n");
}

TEST_F(Properties, AStopGivesNoRecord) {
  write("a");
  person_.onEvents = [this] { busy_.requestStop(); };
  for (const std::vector<std::string>& selected : {std::vector<std::string>{}, {"C:\\a"}, {"C:\\a", "C:\\a"}})
    EXPECT_FALSE(browser::propertiesOf(services(), {selected}, "C:\\", {"a", "a"}));
}

TEST_F(Properties, TheBytesOfFilesCountAndNothingElse) {
  write("tree/a", "12345");
  write("tree/sub/\xFF odd\n", "123");
  write("tree/other/empty", "");
  fs::create_hard_link(host("tree/a"), host("tree/sub/again"));
  fs::create_symlink("a", host("tree/to a"));
  fs::create_symlink("..", host("tree/sub/up"));
  fs::create_directory_symlink("tree", host("to tree"));
  fs::create_symlink("to itself", host("to itself"));
  ASSERT_EQ(mkfifo(host("tree/fifo").c_str(), 0600), 0);
  const std::pair<std::vector<std::string>, std::uint64_t> cases[] = {
      {{}, 0},
      {{"C:\\tree\\a"}, 5},
      {{"C:\\tree"}, 13},
      {{"C:\\to tree", "C:\\tree\\to a"}, 18},
      {{"C:\\tree\\fifo", "C:\\to itself", "C:\\none", "Q:\\a", "C:\\tree\\sub"}, 8}};
  for (const auto& [items, bytes] : cases) {
    EXPECT_EQ(counted(items).bytes, bytes);
    EXPECT_EQ(counted(items).items, items.size());
  }
  std::stop_source stopped;
  int offers = 0;
  const platform::Stop stop(stopped.get_token());
  walked("tree", stop, [&](auto&) { offers += stopped.request_stop() ? 1 : 10; });
  EXPECT_EQ(offers, 1);
  EXPECT_EQ(walked("tree", stop), 0U) << "a stop ends it within a folder";
}

TEST_F(Properties, WhatCannotBeReadAddsNothing) {
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  for (const char* name : {"tree/shut/a", "tree/listed/a", "tree/listed/sub/a", "tree/z"}) write(name, "123");
  fs::permissions(root_, fs::perms(0755));
  fs::permissions(host("tree/shut"), fs::perms::none);
  fs::permissions(host("tree/listed"), fs::perms(0444));
  EXPECT_TRUE(tests::asOrdinaryUser([this] { return walked("tree") == 3; }));
  for (const char* name : {"tree/shut", "tree/listed"}) fs::permissions(host(name), fs::perms(0755));
  EXPECT_EQ(walked("tree"), 12U);
}

TEST_F(Properties, DeepAndWideTreesNeedFewDescriptors) {
  constexpr int depth = 1200;  // longer than a path may be
  makeDeep("deep", depth);
  for (const std::string& name : numbered("deep/wide", 500)) write(name + "/file", "1234567");
  const tests::Limit few(RLIMIT_NOFILE, 100);
  EXPECT_EQ(walked("deep"), 7U * (depth + 500));
  EXPECT_EQ(counted({"C:\\deep"}).bytes, 7U * (depth + 500));
  EXPECT_TRUE(files_.deleteTree("C:\\deep"));
}

TEST_F(Properties, WhatIsMovedMeanwhileDoesNotLeadElsewhere) {
  const std::string big(1000, 'x');
  for (const char* name : {"one/x", "two/x", "three/x"})
    for (const std::string folder : {"", "elsewhere/"}) write(folder + name, big);
  makeDeep("deep", 100);
  int entered = 0;
  const auto move = [&](auto&) {
    if (++entered == 150) fs::rename(host("deep/one/two"), host("elsewhere/moved"));
  };
  EXPECT_LE(walked("deep", {}, move), 700U);
  EXPECT_GE(entered, 150);
  for (const char* name : {"pair/a/x", "pair/b/x"}) write(name, "12345");
  const auto replace = [&](auto&) {
    for (const std::string name : {"pair/a", "pair/b"}) {
      if (fs::is_symlink(host(name))) return;
      fs::rename(host(name), host(name) + " moved");
      fs::create_directory_symlink(host("elsewhere"), host(name));
    }
  };
  EXPECT_EQ(walked("pair", {}, replace), 5U) << "the other one is a link now";
}

TEST_F(Properties, TheTotalGrowsInOrder) {
  std::vector<std::string> items;
  std::vector<std::uint64_t> sums = {0};
  for (int i = 0; i < 300; ++i) {
    const std::string name = "item" + std::to_string(i);
    const int folders = i % 7 == 0 ? 20 : 0;
    for (int j = 0; j < folders; ++j) write(name + "/" + std::to_string(j) + "/file", std::string(10, 'x'));
    if (folders == 0) write(name, std::string(static_cast<std::size_t>(i), 'x'));
    sums.push_back(sums.back() + static_cast<std::uint64_t>(folders == 0 ? i : 10 * folders));
    items.push_back("C:\\" + name);
  }
  for (int round = 0; round < 10; ++round) {
    const SizeCount count(drives_, items);
    for (CountedSize size; !size.ended; size = count.soFar()) ASSERT_EQ(size.bytes, sums[size.items]);
    EXPECT_EQ(count.soFar().items, items.size());
  }
}

}  // namespace
