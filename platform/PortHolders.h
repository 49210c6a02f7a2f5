#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace platform {

/// Which process says that it uses a device: by an open descriptor, or by a lock file "LCK..NAME" in one of
/// the folders (its number as text or as a binary int; one of a process that is gone does not count). 0: none
/// that can be seen.
pid_t descriptorHolder(dev_t device);
pid_t lockFileHolder(const std::string& device, const std::vector<std::string>& folders);

/// "minicom (process 123)"; "another program" where the number tells none.
std::string processWords(pid_t process);

}  // namespace platform
