#pragma once

#include <functional>
#include <string>
#include <vector>

#include "perms/TreeModes.h"
#include "platform/Files.h"

namespace perms {

/// The Windows paths of all files in a folder and below that count as executables on the terminal: first
/// those of the folder itself, without hidden and system files, then those of each subfolder, in the system's
/// order. Links are neither taken nor followed. `goesOn` is asked again and again; where it says no,
/// the search ends.
std::vector<std::string> findExecutables(const platform::Files& files, const std::string& folder,
                                         const std::function<bool()>& goesOn);

/// Marks what findExecutables would find in a folder as it stands, before any mode is changed.
void markExecutables(const platform::Files& files, ItemTree& tree, const std::function<bool()>& goesOn);

}  // namespace perms
