#pragma once

#include <string_view>
#include <vector>

namespace runtime {

/// The lines of a tool's output: cut at every line feed, what follows the last one is no line.
std::vector<std::string_view> completeLines(std::string_view output);

}  // namespace runtime
