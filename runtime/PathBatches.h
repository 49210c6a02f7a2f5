#pragma once

#include <string>
#include <vector>

namespace runtime {

/// Long lists of paths go to a tool in runs: each path in the tools' quoted form, followed by one blank. The
/// first run takes 501, each further one 500; fewer where the system would refuse so long a command.
std::vector<std::string> pathBatches(const std::vector<std::string>& windowsPaths);

}  // namespace runtime
