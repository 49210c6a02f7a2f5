#pragma once

#include <string>
#include <vector>

namespace platform {

struct SerialPort {
  std::string device;   ///< host path
  std::string adapter;  ///< what is plugged in, as it or its driver calls itself; empty: not known
};

/// Where the system shows its devices; host folders without a trailing '/'.
struct DeviceRoots {
  std::string sys = "/sys";
  std::string dev = "/dev";
};

/// The serial devices with hardware behind them: on-board ports by number, then the others (USB and the like)
/// by where they are plugged in, whatever came first.
std::vector<SerialPort> serialDevices(const DeviceRoots& roots);

/// SerialPort::adapter of a device, also of a link to it.
std::string adapterName(const DeviceRoots& roots, const std::string& device);

}  // namespace platform
