#pragma once

#include <string>
#include <vector>

namespace platform {

enum class PortUse { Free, NoSuchPort, Busy, CannotBeOpened };

struct PortState {
  PortUse use = PortUse::Free;
  std::string reason;  ///< in words: who uses it, or what the system says; empty when it is free
};

/// Where programs leave their lock files (LCK..NAME); host folders.
std::vector<std::string> lockFolders();

/// Whether a serial port (host path) can be opened and nobody uses it: no other program has it for itself,
/// has locked it or its lock file, or has it open. Every descriptor of this process counts as well. Opens it
/// only when nobody is known to have it open, without waiting for a carrier, and leaves its settings alone.
/// Processes that cannot be looked into are passed over.
PortState portState(const std::string& device, const std::vector<std::string>& locks = lockFolders());

}  // namespace platform
