#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/modAPI.h"

namespace browser {

constexpr std::size_t modeBatch = 200;  ///< names of one run

/// The command that asks for the modes of some names of one folder, which is its working folder. A name that
/// begins with "-" is passed as "./-name", so that it is no option.
std::string modeCommand(const std::vector<std::string>& names, std::size_t first, std::size_t count);

/// The output's lines as modes of the batch's names, in order; fewer when it has fewer lines. A line of the
/// tool's complaints counts as any other.
std::vector<std::string> modesOf(std::string_view output, std::size_t count);

/// Receives the modes of the names from index `first` on. False ends the pass.
using ModesReady = std::function<bool(std::size_t first, const std::vector<std::string>& modes)>;

/// Asks `ls` for the modes of names in runs of `modeBatch`. Events run before each run.
void runModePass(runtime::modAPI& api, const std::string& toolFolder, const std::string& folder,
                 const std::vector<std::string>& names, const ModesReady& ready);

}  // namespace browser
