#include "runtime/PathBatches.h"

#include "runtime/modAPI.h"

namespace runtime {
namespace {

/// Bytes; the system takes two million and more, the environment included.
constexpr std::size_t longestRun = 1'000'000;
constexpr std::size_t hostRoom = 256;  // a drive's host folder may be longer than its letter

}  // namespace

std::vector<std::string> pathBatches(const std::vector<std::string>& windowsPaths, std::size_t perRun) {
  std::vector<std::string> batches;
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < windowsPaths.size(); ++i) {
    const std::string path = ToCygwinPath(windowsPaths[i]) + ' ';
    const bool stated = i > perRun && perRun > 0 && (i - 1) % perRun == 0;
    bytes += path.size() + hostRoom;
    if (batches.empty() || stated || bytes > longestRun) {
      batches.emplace_back();
      bytes = path.size() + hostRoom;
    }
    batches.back() += path;
  }
  return batches;
}

}  // namespace runtime
