#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Only the letters A to Z have a lower case here; all other bytes stay, whatever the locale.
constexpr char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

inline std::string lowerAscii(std::string_view text) {
  std::string lower;
  lower.reserve(text.size());
  for (const char c : text) lower += lowerAscii(c);
  return lower;
}

}  // namespace platform
