#include <fcntl.h>
#include <sys/ioctl.h>

#include "download/LoaderFiles.h"
#include "download/LoaderStart.h"
#include "tests/OnDisk.h"

namespace {

namespace fs = std::filesystem;
using download::LoaderStart;
using download::SerialSettings;
using testworld::has;

TEST(SerialSettings, ComeBackAsTheyWereSavedAndAreDefaultsWhereGarbled) {
  const struct {
    const char* text;
    SerialSettings settings;
  } cases[] = {{"COM2\r\n9600\r\nopen\r\n", {2, "9600", true}},
               {"COM3\n19200\nclose\n", {3, "19200", false}},
               {"COM1\r\n115200\r\nopen", {1, "115200", true}},
               {"COM2\r\n300\r\nopen\r\n", {2, "", true}},
               {"COM2", {2, "", false}},
               {"COM2\r\n9600\r\nOPEN\r\n", {2, "9600", false}},
               {"COM4\r\n9600\r\nopen\r\n", {}},
               {"com2\r\n9600\r\nopen\r\n", {}},
               {"COM22\r\n9600\r\nopen\r\n", {}},
               {"9600\r\nopen\r\n", {}},
               {"", {}}};
  for (const auto& [text, settings] : cases)
    EXPECT_EQ(textOf(download::serialSettingsFrom(text)), textOf(settings)) << text;
  EXPECT_EQ(textOf(SerialSettings{2, "9600", true}), cases[0].text);
  EXPECT_EQ(textOf(SerialSettings{0, "115200", false}), "115200\r\nclose\r\n");
}

/// A terminal line of the test's own, and a console that keeps what it was started with.
class SerialTest : public testworld::World {
 protected:
  SerialTest() {
    grantpt(line_.get());
    unlockpt(line_.get());
    environment_.set("PAKRUNE_COM2", ptsname(line_.get()));
    environment_.set("XDG_DATA_HOME", root_ + "/data");
    tool("cmd.exe", keep("'%s\\n' \"$PWD\" \"$#\" \"$@\""));
    write("pkg/app.tgz");
  }
  LoaderStart start(const std::string& path = "C:\\pkg\\app.tgz",
                    SerialSettings settings = {2, "9600", true}) {
    return download::startLoader(services(), {path, settings, "C:\\my tools\\wdx.exe"}, "1:02:03 PM");
  }

  platform::Descriptor line_{posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)};
};

TEST_F(SerialTest, TheLoaderStartsInAConsoleInTheFilesFolder) {
  EXPECT_EQ(start(), LoaderStart::Started) << log_.all;
  EXPECT_EQ(kept(),
            root_ + "/disk/pkg\n1\n/k \"\"C:\\my tools\\wdx.exe\" -p 2 -b 9600 -i \"app.tgz\"\" & pause\n");
  EXPECT_EQ(log_.all, "1:02:03 PM Initiated app.tgz download on COM port 2\n");
  EXPECT_EQ(api_.currentFolder(), "C:\\pkg\\");
  write("a&b %c^.bin");
  EXPECT_EQ(start("C:\\a&b %c^.bin", {2, "115200", false}), LoaderStart::Started);
  EXPECT_EQ(kept(),
            root_ + "/disk\n1\n/c \"\"C:\\my tools\\wdx.exe\" -p 2 -b 115200 -i \"a&b %c^.bin\"\" & pause\n");
  EXPECT_EQ(api_.currentFolder(), "C:\\");
  EXPECT_TRUE(person_.told.empty());
}

TEST_F(SerialTest, WhatHindersItIsTold) {
  EXPECT_EQ(start("C:\\pkg\\gone"), LoaderStart::NoFile);
  EXPECT_EQ(start("C:\\pkg"), LoaderStart::NoFile) << "a folder";
  EXPECT_EQ(person_.told, (std::vector<std::string>{"Download Error|Invalid file: C:\\pkg\\gone",
                                                    "Download Error|Invalid file: C:\\pkg"}));
  person_.told.clear();
  const std::string device = ptsname(line_.get());
  environment_.set("PAKRUNE_COM2", root_ + "/none");
  EXPECT_EQ(start(), LoaderStart::PortBusy);
  EXPECT_TRUE(has(log_.all, " COM2 cannot be used: " + root_ + "/none: "));
  environment_.set("PAKRUNE_COM2", device);
  fs::remove(root_ + "/prog/bin/cmd.exe");
  EXPECT_TRUE(person_.told.empty() && !fs::exists(root_ + "/kept"));
  EXPECT_EQ(start(), LoaderStart::Failed);
  EXPECT_TRUE(has(person_.told.at(0), "Pakrune|Error: Unable to send file to device.\r"));
  EXPECT_EQ(log_.all.find("Initiated"), std::string::npos);
}

TEST_F(SerialTest, AnInstalledProgramKeepsItsFilesInTheUsersFolder) {
  const std::string inProgram = program_ + "wdx.exe";
  const std::string inData = drives_.toWindows(root_ + "/data/pakrune/wdx.exe");
  fs::create_directories(root_ + "/data/pakrune");
  for (const char* folder : {"/prog", "/data/pakrune"}) std::ofstream(root_ + folder + "/wdx.exe") << "x";
  const download::LoaderFiles own(services());
  EXPECT_EQ(own.loader(), inProgram);
  EXPECT_FALSE(own.settings());
  own.saveSettings("COM3\r\n");
  EXPECT_TRUE(fs::exists(root_ + "/prog/savedsettings.dlo"));
  if (!tests::ordinaryUserGetsAbout()) GTEST_SKIP() << tests::rootIsClosed;
  chmod(root_.c_str(), 0755);
  chmod((root_ + "/prog").c_str(), 0555);
  chmod((root_ + "/data/pakrune").c_str(), 0777);
  const auto takes = [this](const std::string& loader) {
    return tests::asOrdinaryUser([&] {
      const download::LoaderFiles installed(services());
      const auto before = installed.settings();
      installed.saveSettings("COM2\r\n");
      return installed.loader() == loader && before == "COM3\r\n" && installed.settings() == "COM2\r\n";
    });
  };
  EXPECT_TRUE(takes(inData));
  fs::remove_all(root_ + "/data");
  chmod(root_.c_str(), 0777);
  EXPECT_TRUE(takes(inProgram)) << "the folder is made";
  chmod((root_ + "/prog").c_str(), 0755);
}

}  // namespace
