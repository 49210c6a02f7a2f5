#include "runtime/Lines.h"

#include <algorithm>

namespace runtime {

std::vector<std::string_view> completeLines(std::string_view output) {
  std::vector<std::string_view> lines;
  lines.reserve(static_cast<std::size_t>(std::count(output.begin(), output.end(), '\n')));
  for (std::size_t end = output.find('\n'); end != output.npos; end = output.find('\n')) {
    lines.push_back(output.substr(0, end));
    output.remove_prefix(end + 1);
  }
  return lines;
}

}  // namespace runtime
