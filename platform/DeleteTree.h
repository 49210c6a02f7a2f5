#pragma once

#include <string>

namespace platform {

/// Removes what a host path names and all below it; a link is removed, never followed. Folders that do
/// not let their owner in are opened up first. Goes on past what cannot be removed; true when all is gone.
/// Refuses "/", and a path whose last component is "..". Any depth, with two descriptors.
bool deleteHostTree(const std::string& hostPath);

}  // namespace platform
