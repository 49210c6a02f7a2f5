#include "browser/SizeText.h"

namespace browser {
namespace {

constexpr std::uint64_t kilobyte = 1024;
constexpr std::uint64_t megabyte = 1024 * kilobyte;
constexpr std::uint64_t gigabyte = 1024 * megabyte;

/// Rounded as whole numbers: a double would turn some sizes just below a half into one.
double toHundredths(std::uint64_t bytes, std::uint64_t unit) {
  const std::uint64_t hundredths = bytes / unit * 100 + (bytes % unit * 100 + unit / 2) / unit;
  return static_cast<double>(hundredths) / 100;
}

}  // namespace

std::string formatFSOSize(std::uint64_t bytes, const NumberTexts& texts) {
  if (bytes < kilobyte) return std::to_string(bytes) + " bytes";
  const auto in = [&](std::uint64_t unit, const char* name) {
    return texts.withDecimals(toHundredths(bytes, unit), 2) + name + " (" + texts.grouped(bytes) + " bytes)";
  };
  if (bytes < megabyte) return in(kilobyte, " KB");
  return bytes < gigabyte ? in(megabyte, " MB") : in(gigabyte, " GB");
}

}  // namespace browser
