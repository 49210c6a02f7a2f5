#include "runtime/PathBatches.h"

#include "runtime/modAPI.h"

namespace runtime {
namespace {

constexpr std::size_t perRun = 500;
/// Bytes; the system takes two million and more, the environment included.
constexpr std::size_t longestRun = 1'000'000;

}  // namespace

std::vector<std::string> pathBatches(const std::vector<std::string>& windowsPaths) {
  std::vector<std::string> batches;
  for (std::size_t i = 0; i < windowsPaths.size(); ++i) {
    const std::string path = ToCygwinPath(windowsPaths[i]) + ' ';
    const bool stated = i > perRun && (i - 1) % perRun == 0;
    if (batches.empty() || stated || batches.back().size() + path.size() > longestRun) batches.emplace_back();
    batches.back() += path;
  }
  return batches;
}

}  // namespace runtime
