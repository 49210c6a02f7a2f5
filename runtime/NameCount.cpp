#include "runtime/NameCount.h"

#include <algorithm>

namespace runtime {
namespace {

constexpr std::string_view remark = "tar: ";

}  // namespace

void NameCount::add(std::string_view output) {
  while (!output.empty()) {
    const std::size_t end = std::min(output.find('\n'), output.size());
    head_ += output.substr(0, std::min(end, remark.size() - head_.size()));
    if (end == output.size()) return;
    if (head_ != remark) ++named_;
    head_.clear();
    output.remove_prefix(end + 1);
  }
}

}  // namespace runtime
