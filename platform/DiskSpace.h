#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

/// Bytes of a file system; what is free is what the user may use.
struct DiskSpace {
  std::uint64_t free = 0;
  std::uint64_t whole = 0;
};

/// Of the one that a host folder is on; nullopt where it counts no blocks. Waits for as long as the disk
/// does.
std::optional<DiskSpace> diskSpace(const std::string& hostFolder);

}  // namespace platform
