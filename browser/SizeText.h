#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace browser {

/// Numbers as the user's locale writes them.
struct NumberTexts {
  std::function<std::string(std::uint64_t number)> grouped;              ///< in groups of three digits
  std::function<std::string(double number, int decimals)> withDecimals;  ///< exactly that many
};

/// "512 bytes", "1.50 KB (1,536 bytes)", and so on with MB and GB, which are powers of 1024. Two decimals,
/// halves away from zero, exact for every size.
std::string formatFSOSize(std::uint64_t bytes, const NumberTexts& texts);

}  // namespace browser
