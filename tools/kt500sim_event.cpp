#include "tools/kt500sim_event.h"

#include <cstdio>

namespace kt500sim {

void event(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

std::string shown(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= 0x20 && code != 0x7F && c != '\\')
      text += c;
    else
      text.append("\\x").append(1, digits[code >> 4]).append(1, digits[code & 15]);
  }
  return text;
}

}  // namespace kt500sim
