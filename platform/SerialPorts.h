#pragma once

#include <optional>

#include "platform/Environment.h"
#include "platform/Registry.h"
#include "platform/SerialDevices.h"

namespace platform {

/// COM1 to COM3 on this machine: the device that PAKRUNE_COM1.. names, otherwise the one that the text
/// "COM1".. in the machine's registry names (HARDWARE\DEVICEMAP\SERIALCOMM), otherwise the first, second,
/// third serial device of the machine. Looked up anew at each call.
class SerialPorts {
 public:
  static constexpr int count = 3;

  SerialPorts(const Environment& environment, const Registry& registry, DeviceRoots roots = {});
  std::optional<SerialPort> port(int number) const;  ///< nullopt: nothing stands behind COM`number`

 private:
  std::optional<std::string> namedDevice(int number) const;
  const Environment& environment_;
  const Registry& registry_;
  DeviceRoots roots_;
};

}  // namespace platform
