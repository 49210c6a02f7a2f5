#include "platform/SerialPorts.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <termios.h>

#include <array>
#include <cstring>

#include "platform/PortUse.h"
#include "tests/OnDisk.h"

namespace fs = std::filesystem;
using platform::portState;
using platform::PortUse;
using testworld::has;

namespace {

using Values = std::vector<std::pair<std::string, std::string>>;

/// A system's view of its serial devices, below a folder of the test's own.
class SerialPortsTest : public testworld::World {
 protected:
  SerialPortsTest() {
    fs::create_directories(sys_ + "/class/tty");
    fs::create_directory(roots_.dev);
    for (const char* number : {"1", "2", "3"}) environment_.set(std::string("PAKRUNE_COM") + number, "");
  }
  void write(const std::string& folder, const Values& values) const {
    fs::create_directories(sys_ + "/" + folder);
    for (const auto& [file, text] : values) std::ofstream(sys_ + "/" + folder + "/" + file) << text << "\n";
  }
  void link(const std::string& folder, const std::string& name, const std::string& target) const {
    fs::create_directories(sys_ + "/" + folder);
    fs::create_symlink("../../bus/" + target, sys_ + "/" + folder + "/" + name);
  }
  void tty(const std::string& name, const std::string& device, const Values& values = {}) const {
    fs::create_directories(sys_ + "/devices/" + device);
    write("class/tty/" + name, values);
    fs::create_symlink(sys_ + "/devices/" + device, sys_ + "/class/tty/" + name + "/device");
    std::ofstream(roots_.dev + "/" + name) << "";
  }
  std::string port(int number) const {
    const auto found = platform::SerialPorts(environment_, registry_, roots_).port(number);
    return found ? found->device + "|" + found->adapter : "none";
  }

  std::string sys_ = root_ + "/sys";
  platform::DeviceRoots roots_{sys_, root_ + "/dev"};
};

/// A pseudo terminal, and beside it a child that holds its device in one way or other.
class PortUseTest : public testworld::World {
 protected:
  PortUseTest() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    grantpt(master_);
    unlockpt(master_);
    std::array<char, 64> name{};
    ptsname_r(master_, name.data(), name.size());
    port_ = name.data();
    chmod(port_.c_str(), 0666);
  }
  ~PortUseTest() override {
    endChild();
    close(master_);
  }
  template <typename Hold>
  void childThat(Hold hold) {
    endChild();
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    child_ = fork();
    if (child_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      hold(open(port_.c_str(), O_RDWR | O_NOCTTY));
      if (::write(ends[1], "!", 1) == 1) pause();
      _exit(0);
    }
    char ready = 0;
    close(ends[1]);
    EXPECT_EQ(read(ends[0], &ready, 1), 1);
    close(ends[0]);
  }
  void endChild() {
    if (child_ <= 0) return;
    kill(child_, SIGKILL);
    waitpid(std::exchange(child_, 0), nullptr, 0);
  }
  std::string childWords() const { return "(process " + std::to_string(child_) + ")"; }
  PortUse use(const std::string& device) const { return portState(device, {root_}).use; }

  int master_;
  pid_t child_ = 0;
  std::string port_;
};

}  // namespace

TEST_F(SerialPortsTest, OnlyWhatHasHardwareAndInTheOrderOfItsPlace) {
  const std::string usb = "pci0/usb1/";
  tty("ttyS10", "pnp0/00:06", {{"type", "4"}});
  tty("ttyS9", "pnp0/00:05/00:05:0/00:05:0.0", {{"type", "4"}});
  for (const char* inner : {"00:05:0", "00:05:0/00:05:0.0"})
    link(std::string("devices/pnp0/00:05/") + inner, "subsystem", "serial-base");
  link("devices/pnp0/00:05/00:05:0", "driver", "serial-base/drivers/ctrl");
  link("devices/pnp0/00:05", "driver", "pnp/drivers/serial");
  tty("ttyS0", "pnp0/00:04", {{"type", "0"}});
  tty("ttyS1", "platform/serial8250");
  write("class/tty/tty1", {});
  tty("ttyUSB0", usb + "1-10/1-10:1.0/ttyUSB0");
  tty("ttyUSB1", usb + "1-2/1-2:1.0/ttyUSB1");
  tty("ttyUSB12", usb + "1-1/1-1:1.0/ttyUSB12");
  tty("ttyUSB3", usb + "1-1/1-1:1.0/ttyUSB3");
  tty("ttyACM0", usb + "1-3/1-3.2/1-3.2:1.0");
  write("devices/" + usb + "1-10", {{"idVendor", "1"}, {"product", "USB\a UART"}, {"manufacturer", "Maker"}});
  write("devices/" + usb + "1-2", {{"idVendor", "1"}, {"product", "Maker Cable"}, {"manufacturer", "Maker"}});
  write("devices/" + usb + "1-1", {{"idVendor", "1"}, {"manufacturer", "Maker "}});
  write("devices/" + usb + "1-3/1-3.2", {{"idVendor", "1"}});
  tty("rfcomm0", "virtual/bluetooth/hci0");
  link("devices/" + usb + "1-3/1-3.2/1-3.2:1.0", "driver", "usb/drivers/cdc_acm");
  std::vector<std::string> found;
  for (const auto& device : platform::serialDevices(roots_))
    found.push_back(fs::path(device.device).filename().string() + "|" + device.adapter);
  EXPECT_EQ(found, (std::vector<std::string>{"ttyS9|serial", "ttyS10|00:06", "ttyUSB3|Maker",
                                             "ttyUSB12|Maker", "ttyUSB1|Maker Cable", "ttyACM0|cdc_acm",
                                             "ttyUSB0|Maker USB\\x07 UART", "rfcomm0|hci0"}));
}

TEST_F(SerialPortsTest, TheVariableThenTheRegistryThenTheMachine) {
  const std::string key = "HARDWARE\\DEVICEMAP\\SERIALCOMM", dev = roots_.dev;
  const auto store = [&](const char* name, platform::ValueType type, const std::string& text) {
    ASSERT_TRUE(registry_.write(platform::Hive::LocalMachine, key, name, {type, text}));
  };
  EXPECT_EQ(port(1), "none");
  tty("ttyS0", "pnp0/00:05", {{"type", "4"}});
  tty("ttyS1", "pnp0/00:06", {{"type", "4"}});
  EXPECT_EQ(port(1), dev + "/ttyS0|00:05");
  EXPECT_EQ(port(2), dev + "/ttyS1|00:06");
  for (const int number : {0, 3, 4, -1}) EXPECT_EQ(port(number), "none") << number;
  store("com1", platform::ValueType::Text, "/dev/elsewhere/ttyS1");
  store("COM2", platform::ValueType::Number, "7");
  EXPECT_EQ(port(1), "/dev/elsewhere/ttyS1|");  // another device of that name
  EXPECT_EQ(port(2), dev + "/ttyS1|00:06");
  fs::create_symlink(dev + "/ttyS1", root_ + "/by-id");
  environment_.set("PAKRUNE_COM1", root_ + "/by-id");
  environment_.set("PAKRUNE_COM2", "");
  environment_.set("PAKRUNE_COM4", "/dev/ttyS0");
  store("COM2", platform::ValueType::Text, "");
  EXPECT_EQ(port(4), "none");
  EXPECT_EQ(port(1), root_ + "/by-id|00:06");
  EXPECT_EQ(port(2), dev + "/ttyS1|00:06");
}

TEST_F(PortUseTest, AFreePortStaysAsItIs) {
  termios before{}, after{};
  tcgetattr(master_, &before);
  const auto count = tests::openDescriptors();
  EXPECT_EQ(use(port_), PortUse::Free);
  EXPECT_EQ(tests::openDescriptors(), count);
  tcgetattr(master_, &after);
  EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
}

TEST_F(PortUseTest, WhatIsNoPortSaysWhy) {
  std::ofstream(root_ + "/file") << "";
  fs::create_symlink(root_ + "/gone", root_ + "/dangling");
  for (const std::string& missing :
       {root_ + "/gone", root_ + "/dangling", root_ + "/file/port", std::string()})
    EXPECT_EQ(use(missing), PortUse::NoSuchPort) << missing;
  for (const std::string& other : {root_ + "/file", root_, std::string("/dev/full")}) {
    EXPECT_EQ(use(other), PortUse::CannotBeOpened) << other;
    EXPECT_EQ(portState(other).reason, "Inappropriate ioctl for device");
  }
}

TEST_F(PortUseTest, AnOpenDescriptorOfAnyProcessIsSeen) {
  childThat([](int) {});
  const platform::PortState state = portState(port_, {root_});
  EXPECT_EQ(state.use, PortUse::Busy);
  EXPECT_TRUE(has(state.reason, "it is open in serialports_tes " + childWords()));
  fs::create_symlink(port_, root_ + "/link");
  EXPECT_EQ(use(root_ + "/link"), PortUse::Busy);
  endChild();
  EXPECT_EQ(use(port_), PortUse::Free);
  const platform::Descriptor own(open(port_.c_str(), O_RDWR | O_NOCTTY));
  EXPECT_EQ(use(port_), PortUse::Busy);
}

/// An ordinary user cannot look into a process of root's, so only what the port itself tells is left.
TEST_F(PortUseTest, APortThatIsKeptOrLockedTellsIt) {
  if (geteuid() != 0 || !tests::ordinaryUserGetsAbout()) GTEST_SKIP() << "needs root and an ordinary user";
  const auto sees = [this](PortUse wanted, const std::string& reason) {
    return tests::asOrdinaryUser([&] {
      const platform::PortState state = portState(port_, {root_});
      return state.use == wanted && state.reason == reason;
    });
  };
  childThat([](int) {});
  EXPECT_TRUE(sees(PortUse::Free, ""));  // passed over
  for (const int kind : {LOCK_EX, LOCK_SH}) {
    childThat([kind](int port) { flock(port, kind); });
    EXPECT_TRUE(sees(PortUse::Busy, "it is locked by another program"));
  }
  for (const short kind : {short{F_RDLCK}, short{F_WRLCK}}) {
    childThat([kind](int port) {
      struct flock lock {};
      lock.l_type = kind;
      fcntl(port, F_SETLK, &lock);
    });
    EXPECT_TRUE(sees(PortUse::Busy, "it is locked by serialports_tes " + childWords()));
  }
  chmod(port_.c_str(), 0);
  EXPECT_TRUE(sees(PortUse::CannotBeOpened, "Permission denied"));
  chmod(port_.c_str(), 0666);
  childThat([](int port) { ioctl(port, TIOCEXCL); });
  EXPECT_TRUE(sees(PortUse::Busy, "Device or resource busy"));
  endChild();  // the terminal's other end keeps the mark
  EXPECT_EQ(portState(port_, {root_}).reason, "it is kept by another program");
}

TEST_F(PortUseTest, ALockFileCountsAsLongAsItsProcess) {
  fs::create_symlink(port_, root_ + "/ttyX0");
  const std::string device = root_ + "/ttyX0";
  childThat([](int port) { close(port); });
  const std::string own = std::to_string(getpid()), child = std::to_string(child_);
  const auto bytes = [](pid_t pid) { return std::string(reinterpret_cast<const char*>(&pid), sizeof pid); };
  const auto useWith = [&](const std::string& file, const std::string& content) {
    std::ofstream(root_ + "/" + file, std::ios::binary) << content;
    const PortUse found = use(device);
    fs::remove(root_ + "/" + file);
    return found;
  };
  for (const std::string before : {"LCK..", "LCK..pts_"})
    EXPECT_EQ(useWith(before + fs::path(port_).filename().string(), "   " + child + "\n"), PortUse::Busy)
        << before;
  EXPECT_EQ(useWith("LCK..ttyX1", child), PortUse::Free);
  for (const std::string& held : {child, child + " minicom root\n", bytes(child_), std::string("1  \n")})
    EXPECT_EQ(useWith("LCK..ttyX0", held), PortUse::Busy) << held;
  chmod(root_.c_str(), 0755);
  std::ofstream(root_ + "/LCK..ttyX0") << getppid();
  if (tests::ordinaryUserGetsAbout()) {
    EXPECT_TRUE(tests::asOrdinaryUser([&] { return use(device) == PortUse::Busy; }));
  }
  const pid_t stale = child_;
  endChild();
  // The number 0x31 in binary begins like the text "1", which is a process that always runs.
  for (const std::string& none : {child, bytes(stale), own, std::string(), std::string("x\n"),
                                  std::string("0"), bytes(0x7FFFFF31), std::string("-1\n")})
    EXPECT_EQ(useWith("LCK..ttyX0", none), PortUse::Free) << none;
  EXPECT_EQ(portState(device, {root_ + "/gone"}).use, PortUse::Free);
}
