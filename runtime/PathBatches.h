#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace runtime {

constexpr std::size_t statedRun = 500;
constexpr std::size_t asManyAsFit = static_cast<std::size_t>(-1) / 2;

/// Long lists of paths go to a tool in runs: each path in the tools' quoted form, followed by one blank. The
/// first run takes one more than `perRun` (501), each further one `perRun`; fewer where the system would
/// refuse so long a command.
std::vector<std::string> pathBatches(const std::vector<std::string>& windowsPaths,
                                     std::size_t perRun = statedRun);

}  // namespace runtime
