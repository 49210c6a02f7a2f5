#include "archive/TarEnd.h"

#include <algorithm>
#include <array>

#include "platform/CompressorWords.h"
#include "runtime/Lines.h"

namespace archive {
namespace {

constexpr std::uint64_t blockSize = 512;
constexpr std::string_view magic = "ustar";
constexpr std::uint64_t magicPlace = 257;  ///< in the first header

}  // namespace

bool lacksEnd(const platform::Files& files, const std::string& path) {
  const platform::RegularFile file = files.openFile(path);
  std::array<char, 2 * blockSize> bytes{};
  const bool isTar = file && file.readAt(magicPlace, bytes.data(), magic.size()) == magic.size() &&
                     std::equal(magic.begin(), magic.end(), bytes.begin());
  if (!isTar) return false;
  const std::uint64_t size = file.size() / blockSize * blockSize;
  if (size < bytes.size()) return true;
  const auto count = file.readAt(size - bytes.size(), bytes.data(), bytes.size());
  return count == bytes.size() &&
         std::any_of(bytes.begin(), bytes.end(), [](char byte) { return byte != '\0'; });
}

bool saysEndIsMissing(std::string_view printed) {
  const auto lines = runtime::completeLines(printed);
  return std::find(lines.begin(), lines.end(), platform::tarEndMissing) != lines.end();
}

}  // namespace archive
