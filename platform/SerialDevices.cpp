#include "platform/SerialDevices.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <tuple>

#include "platform/HeldName.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view placeholders = "/platform/serial8250/";  // made by a driver before it has looked
constexpr std::string_view innerBus = "serial-base";  // the kernel's own steps between a port and its driver
constexpr std::string_view noHardware = "0";

struct Device {
  std::string name;   // ttyUSB0
  std::string place;  // what it hangs on, below the bus; empty: on board
};

/// The first line of a file that tells one value; empty where there is none.
std::string valueIn(const fs::path& file) {
  std::string line;
  std::ifstream stream(file);
  std::getline(stream, line);
  line.erase(line.find_last_not_of(" \t\r") + 1);
  return line;
}

fs::path ttyFolder(const DeviceRoots& roots) { return fs::path(roots.sys) / "class" / "tty"; }

/// The device of a tty below /sys/devices; empty where there is none.
fs::path deviceOf(const DeviceRoots& roots, const std::string& name) {
  std::error_code error;
  return fs::canonical(ttyFolder(roots) / name / "device", error);
}

bool hasHardware(const DeviceRoots& roots, const std::string& name, const fs::path& device) {
  if (device.empty()) return false;
  const std::string type = valueIn(ttyFolder(roots) / name / "type");
  const bool placeholder = (device.string() + '/').find(placeholders) != std::string::npos;
  return type != noHardware && !(placeholder && type.empty());
}

/// The USB device that a device belongs to; empty: to none.
fs::path usbDeviceOf(const fs::path& device) {
  for (fs::path at = device; at.has_relative_path(); at = at.parent_path())
    if (fs::exists(at / "idVendor")) return at;
  return {};
}

/// Behind the place the path may end in the tty's own name, which is compared last anyway.
std::string placeOf(const std::string& name, const fs::path& device) {
  const bool onBoard = name.starts_with("tty") && usbDeviceOf(device).empty();
  return onBoard ? std::string() : device.string();
}

/// The digits at the front.
std::string_view takeNumber(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
  const std::string_view number = text.substr(0, end);
  text.remove_prefix(end);
  return number;
}

/// Numbers inside count as numbers: 1-2 stands before 1-10.
int compareNatural(std::string_view one, std::string_view other) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  while (!one.empty() && !other.empty()) {
    if (isDigit(one.front()) && isDigit(other.front())) {
      const std::string_view a = takeNumber(one), b = takeNumber(other);
      if (a != b) return std::tuple(a.size(), a) < std::tuple(b.size(), b) ? -1 : 1;
      continue;
    }
    if (one.front() != other.front()) return one.front() < other.front() ? -1 : 1;
    one.remove_prefix(1);
    other.remove_prefix(1);
  }
  return static_cast<int>(other.empty()) - static_cast<int>(one.empty());
}

bool standsBefore(const Device& one, const Device& other) {
  if (const int order = compareNatural(one.place, other.place); order != 0) return order < 0;
  return compareNatural(one.name, other.name) < 0;
}

std::string usbText(const fs::path& usb) {
  const std::string product = valueIn(usb / "product");
  const std::string maker = valueIn(usb / "manufacturer");
  if (maker.empty() || product.starts_with(maker)) return product;
  return product.empty() ? maker : maker + ' ' + product;
}

std::string linkedName(const fs::path& link) {
  std::error_code error;
  return fs::read_symlink(link, error).filename();
}

std::string driverName(fs::path device) {
  while (device.has_relative_path() && linkedName(device / "subsystem") == innerBus)
    device = device.parent_path();
  const std::string driver = linkedName(device / "driver");
  return driver.empty() ? std::string(device.filename()) : driver;
}

}  // namespace

std::vector<SerialPort> serialDevices(const DeviceRoots& roots) {
  std::vector<Device> devices;
  std::error_code error;
  for (fs::directory_iterator entry(ttyFolder(roots), error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename();
    const fs::path device = deviceOf(roots, name);
    if (hasHardware(roots, name, device)) devices.push_back({name, placeOf(name, device)});
  }
  std::sort(devices.begin(), devices.end(), standsBefore);
  std::vector<SerialPort> ports;
  for (const Device& device : devices) {
    const std::string path = roots.dev + '/' + device.name;
    ports.push_back({path, adapterName(roots, path)});
  }
  return ports;
}

std::string adapterName(const DeviceRoots& roots, const std::string& device) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(device, error);
  if (error || real.parent_path() != fs::weakly_canonical(roots.dev, error)) return {};
  const fs::path hardware = deviceOf(roots, real.filename());
  if (hardware.empty()) return {};
  const fs::path usb = usbDeviceOf(hardware);
  const std::string text = usb.empty() ? std::string() : usbText(usb);
  // What a maker wrote is held like a name on disk: it may be no text at all.
  return shownName(holdName(text.empty() ? driverName(hardware) : text));
}

}  // namespace platform
