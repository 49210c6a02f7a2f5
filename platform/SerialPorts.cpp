#include "platform/SerialPorts.h"

namespace platform {
namespace {

constexpr const char* variablePrefix = "PAKRUNE_";
constexpr const char* namePrefix = "COM";
constexpr const char* registryKey = "HARDWARE\\DEVICEMAP\\SERIALCOMM";

}  // namespace

SerialPorts::SerialPorts(const Environment& environment, const Registry& registry, DeviceRoots roots)
    : environment_(environment), registry_(registry), roots_(std::move(roots)) {}

std::optional<std::string> SerialPorts::namedDevice(int number) const {
  const std::string name = namePrefix + std::to_string(number);
  if (std::string device = environment_.get(variablePrefix + name); !device.empty()) return device;
  const auto value = registry_.read(Hive::LocalMachine, registryKey, name);
  if (!value || value->type != ValueType::Text || value->text.empty()) return std::nullopt;
  return value->text;
}

std::optional<SerialPort> SerialPorts::port(int number) const {
  if (number < 1 || number > count) return std::nullopt;
  if (const auto device = namedDevice(number)) return SerialPort{*device, adapterName(roots_, *device)};
  const std::vector<SerialPort> found = serialDevices(roots_);
  const auto index = static_cast<std::size_t>(number - 1);
  return index < found.size() ? std::optional(found[index]) : std::nullopt;
}

}  // namespace platform
