#include "platform/Registry.h"

#include <sys/file.h>

#include <thread>

#include "tests/OnDisk.h"

namespace fs = std::filesystem;
using platform::Hive;
using platform::Registry;
using platform::ValueType;
using tests::asOrdinaryUser;
using tests::bytesOf;
using tests::giveTo;
using tests::modeOf;
using testworld::has;

namespace {

constexpr const char* key = "SOFTWARE\\Halvoren Inc\\Pakrune";
constexpr const char* heading = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvoren Inc\\Pakrune]\n";

class RegistryTest : public testworld::World {
 protected:
  RegistryTest() {
    registry_.setReport([this](const std::string& line) {
      reports_.push_back(line);
      get("listeners read too");
    });
  }
  void put(const std::string& bytes) {
    fs::create_directories(root_ + "/config");
    std::ofstream(file_, std::ios::binary) << bytes;
  }
  std::string get(const std::string& name) const {
    const auto value = registry_.read(Hive::LocalMachine, key, name);
    return value && value->type == ValueType::Text ? value->text : "(none)";
  }
  bool set(const std::string& name, const std::string& text) {
    return registry_.write(Hive::LocalMachine, key, name, {ValueType::Text, text});
  }
  std::string file_ = root_ + "/config/registry.txt";
  std::string site_ = root_ + "/site.txt";
  Registry registry_{file_, site_};
  std::vector<std::string> reports_;
};

}  // namespace

TEST_F(RegistryTest, OddTextsComeBackExactly) {
  std::string all = "caf\xC3\xA9 \xEF\x80\xA2 \\x41 \\";
  for (char c = 127; c >= 0; --c) all.insert(0, 1, c);
  for (const std::string& text : {all, std::string()}) {
    EXPECT_TRUE(set("n" + text, text));
    EXPECT_EQ(get("n" + text), text);
  }
  EXPECT_FALSE(registry_.write(Hive::LocalMachine, "a\nb", "x", {ValueType::Text, "1"}));
  EXPECT_FALSE(registry_.write(Hive::LocalMachine, key, "n", {ValueType::Number, "many"}));
  EXPECT_TRUE(registry_.write(Hive::LocalMachine, key, "n", {ValueType::Number, "4294967295"}));
  EXPECT_EQ(registry_.read(Hive::LocalMachine, key, "N")->text, "4294967295");
  EXPECT_TRUE(reports_.empty());
}

TEST_F(RegistryTest, ReadsWhatAPersonWrote) {
  put("\xEF\xBB\xBF; mine\r\n\r\n [hkey_local_machine\\Software\\HALVOREN INC\\pakrune] \r\n"
      "\t\"USR8\" = \"0\" \r\n\"n\"=DWORD:5\r\n\"twice\"=\"a\"\r\n\"Twice\"=\"b\"\r\n"
      "[HKEY_LOCAL_MACHINE\\software\\Cygnus Solutions\\Cygwin\\mounts v2\\/]\r\n\"native\"=\"C:\\\\cyg\"");
  EXPECT_EQ(get("usr8"), "0");
  EXPECT_EQ(get("twice"), "b");
  EXPECT_EQ(registry_.read(Hive::LocalMachine, key, "n")->type, ValueType::Number);
  EXPECT_EQ(registry_.read(Hive::CurrentUser, key, "usr8"), std::nullopt);
  const char* const mounts = "SOFTWARE\\Cygnus Solutions\\Cygwin\\mounts v2\\/";
  EXPECT_EQ(registry_.read(Hive::LocalMachine, mounts, "native")->text, "C:\\cyg");
}

TEST_F(RegistryTest, AWriteChangesOneLine) {
  const std::string begin = "# note\r\n[HKEY_LOCAL_MACHINE\\Software\\Halvoren Inc\\pakrune]\r\n";
  const std::string end = "\r\n; last\r\n[HKEY_CURRENT_USER\\x]\r\n\"a\"=\"2\"";
  put(begin + "\"a\"=\"1\"\r\n" + end);
  ASSERT_TRUE(set("B", "new"));
  EXPECT_EQ(bytesOf(file_), begin + "\"a\"=\"1\"\r\n\"B\"=\"new\"\r\n" + end);
  ASSERT_TRUE(set("A", "3"));
  ASSERT_TRUE(registry_.write(Hive::CurrentUser, "y", "c", {ValueType::Number, "7"}));
  EXPECT_EQ(bytesOf(file_), begin + "\"A\"=\"3\"\r\n\"B\"=\"new\"\r\n" + end +
                                "\r\n\r\n[HKEY_CURRENT_USER\\y]\r\n\"c\"=dword:7\r\n");
}

TEST_F(RegistryTest, LinksModesAndFoldersStay) {
  ASSERT_TRUE(set("a", "1"));
  EXPECT_EQ(modeOf(root_ + "/config"), 0700U);
  EXPECT_EQ(modeOf(file_), 0600U);
  fs::create_directory(root_ + "/dot");
  fs::rename(file_, root_ + "/dot/real");
  fs::create_symlink("../dot/real", file_);
  chmod((root_ + "/dot/real").c_str(), 0640);
  ASSERT_TRUE(set("a", "2"));
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(modeOf(root_ + "/dot/real"), 0640U);
  fs::remove(root_ + "/dot/real");
  ASSERT_TRUE(set("a", "3"));  // a link that leads nowhere yet
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(get("a"), "3");
}

TEST_F(RegistryTest, DamagedFilesAreSetAsideAndReported) {
  const std::string good = std::string(heading) + "\"a\"=\"1\"\n";
  const std::string damages[] = {good + "rubbish\n",           good + "\"b\"=\"open\n",
                                 good + "\"b\"=\"C:\\cyg\"\n", good + "\"b\"=dword:4294967296\n",
                                 good + "[HKEY_NOWHERE\\x]\n", good + std::string("; \0\n", 4),
                                 "\"a\"=\"no heading\"\n",     good + ';' + std::string(1024 * 1024, 'x')};
  int number = 0;
  for (const std::string& damage : damages) {
    put(damage);
    EXPECT_TRUE(++number % 2 == 0 ? set("c", "2") : get("a") == "(none)");  // writing finds it, too
    const std::string aside = file_ + ".damaged" + (number == 1 ? "" : "-" + std::to_string(number));
    EXPECT_EQ(bytesOf(aside), damage);
    ASSERT_EQ(reports_.size(), static_cast<std::size_t>(number));
    EXPECT_TRUE(has(reports_.back(), aside));
  }
  EXPECT_TRUE(has(reports_.front(), "(line 3)"));
}

TEST_F(RegistryTest, AFolderInItsPlaceIsSetAsideAndALinkNotFollowed) {
  fs::create_directories(file_ + "/inside");
  EXPECT_TRUE(set("a", "1"));
  EXPECT_TRUE(fs::is_directory(file_ + ".damaged/inside"));
  fs::remove(file_);
  fs::create_directory(root_ + "/precious");
  fs::create_symlink(root_ + "/precious", file_);
  EXPECT_EQ(get("a"), "(none)");
  EXPECT_TRUE(fs::is_symlink(file_ + ".damaged-2"));
  EXPECT_TRUE(fs::is_directory(root_ + "/precious"));
}

TEST_F(RegistryTest, SiteDefaultsAreReadAndNeverTouched) {
  std::ofstream(site_) << heading << "\"a\"=\"site\"\n\"b\"=\"site\"\n";
  ASSERT_TRUE(set("b", "mine"));
  EXPECT_EQ(get("a"), "site");
  EXPECT_EQ(get("b"), "mine");
  std::ofstream(site_) << "rubbish";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(get("a"), "(none)");
  EXPECT_EQ(reports_.size(), 1U);
  EXPECT_EQ(bytesOf(site_), "rubbish");
}

TEST_F(RegistryTest, OfAFullDiskTheOldValueIsLeft) {
  ASSERT_TRUE(set("a", std::string(50000, 'x')));
  {
    const tests::FullDisk full(1000);
    EXPECT_TRUE(set("a", "short"));
    EXPECT_FALSE(set("b", std::string(5000, 'y')));
  }
  EXPECT_EQ(get("a"), "short");
  EXPECT_FALSE(set("huge", std::string(1024 * 1024, 'z')));  // would not be read again
  EXPECT_EQ(get("a"), "short");
  EXPECT_EQ(std::distance(fs::directory_iterator(root_ + "/config"), {}), 2);  // the file and its lock
}

TEST_F(RegistryTest, WhatMayNotBeChangedStays) {
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  ASSERT_TRUE(set("a", "1"));
  const std::string folder = root_ + "/config";
  for (const std::string& path : {root_, folder, file_}) ASSERT_TRUE(giveTo(path, 65534, 65534));
  const auto modes = [&](mode_t ofFolder, mode_t ofFile) {
    chmod(file_.c_str(), ofFile);
    chmod(folder.c_str(), ofFolder);
  };
  const auto tellsOnce = [this] {
    return get("a") == "(none)" && get("a") == "(none)" && !set("a", "2") && reports_.size() == 1;
  };
  modes(0700, 0);
  EXPECT_TRUE(asOrdinaryUser(tellsOnce));
  for (const auto& [ofFolder, ofFile] : {std::pair(0700U, 0400U), {0500U, 0600U}}) {
    modes(ofFolder, ofFile);
    EXPECT_TRUE(asOrdinaryUser([this] { return !set("a", "2") && get("a") == "1"; })) << ofFolder;
  }
  std::ofstream(file_) << "rubbish";
  EXPECT_TRUE(asOrdinaryUser(tellsOnce));
  EXPECT_EQ(bytesOf(file_), "rubbish");
  modes(0700, 0600);
}

TEST_F(RegistryTest, WhatRootMakesOrChangesBelongsToTheUser) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root";
  const std::string home = root_ + "/home";
  ASSERT_EQ(mkdir(home.c_str(), 0755), 0);
  ASSERT_TRUE(giveTo(home, 65534, 65534));
  setenv("HOME", home.c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");
  ASSERT_TRUE(Registry::forUser().write(Hive::LocalMachine, key, "a", {ValueType::Text, "1"}));
  for (const char* made : {"/.config", "/.config/pakrune", "/.config/pakrune/registry.txt",
                           "/.config/pakrune/registry.txt.lock"})
    EXPECT_TRUE(tests::belongsTo(home + made, 65534, tests::statusOf(home + made).st_gid)) << made;
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  ASSERT_TRUE(set("a", "1"));
  for (const std::string& path : {root_, root_ + "/config", file_}) ASSERT_TRUE(giveTo(path, 65534, 65534));
  ASSERT_TRUE(set("a", "2"));
  EXPECT_TRUE(asOrdinaryUser([this] { return get("a") == "2" && set("a", "3"); }));
}

TEST_F(RegistryTest, SecondInstancesWaitForEachOther) {
  std::vector<std::thread> writers;
  for (const char* prefix : {"a-", "b-", "c-", "d-"})
    writers.emplace_back([this, prefix] {
      Registry own(file_, site_);
      for (const std::string& name : numbered(prefix, 10))
        own.write(Hive::LocalMachine, key, name, {ValueType::Text, "x"});
    });
  for (std::thread& writer : writers) writer.join();
  for (const char* prefix : {"a-", "b-", "c-", "d-"})
    for (const std::string& name : numbered(prefix, 10)) EXPECT_EQ(get(name), "x") << name;
  const int holder = open((file_ + ".lock").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(holder, LOCK_EX), 0);
  EXPECT_FALSE(set("a", "1"));
  close(holder);
  EXPECT_TRUE(set("a", "1"));
}

TEST_F(RegistryTest, SettingsReadTextsUpToANulAndLogFailedWrites) {
  platform::UserSettings user(registry_);
  runtime::Settings settings(registry_, user, log_);
  for (const auto& [text, first] : {std::pair(std::string("1\0", 2), true), {"1", true}, {"1 ", false}}) {
    settings.RegWriteString(Hive::LocalMachine, key, "FirstRun", text);
    EXPECT_EQ(settings.firstRun(), first);
  }
  settings.dontShowAgain();
  EXPECT_EQ(get("firstrun"), "0");
  ASSERT_TRUE(registry_.write(Hive::LocalMachine, key, "usr8", {ValueType::Number, "1"}));
  EXPECT_EQ(settings.RegReadString(Hive::LocalMachine, key, "usr8", "default"), "default");
  settings.setInitDir("C:\\my \"pkg\"");
  EXPECT_EQ(user.read("halvoren", "pakrune", "INITDIR"), "C:\\my \"pkg\"");
  EXPECT_EQ(log_.all, "");
  fs::remove_all(root_ + "/config");
  std::ofstream(root_ + "/config") << "in the way";
  settings.setLastIP("10.0.0.1");
  settings.setUsr8("0");
  EXPECT_EQ(log_.all, "ERROR: Unable to write to registry\nERROR: Unable to write to registry\n");
}

TEST_F(RegistryTest, StandsInTheConfigurationFolder) {
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  chmod(root_.c_str(), 0777);
  const auto writes = [this](const std::string& config, const std::string& file) {
    return asOrdinaryUser([&] {  // in a process of its own: the environment of this one stays
      setenv("HOME", root_.c_str(), 1);
      setenv("XDG_CONFIG_HOME", config.c_str(), 1);
      return Registry::forUser().write(Hive::CurrentUser, "k", "n", {ValueType::Text, "x"}) &&
             fs::exists(root_ + file);
    });
  };
  EXPECT_TRUE(writes(root_ + "/cfg", "/cfg/pakrune/registry.txt"));
  EXPECT_TRUE(writes("relative", "/.config/pakrune/registry.txt"));
}
