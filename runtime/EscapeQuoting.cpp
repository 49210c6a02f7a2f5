#include "runtime/EscapeQuoting.h"

#include <algorithm>

namespace runtime {
namespace {

/// The character that a backslash and another character stand for; 0 for none.
char characterOf(char escaped) {
  constexpr std::string_view letters = "abtnvfr";
  if (escaped == '\\' || escaped == ' ') return escaped;
  const std::size_t at = letters.find(escaped);
  return at == letters.npos ? '\0' : static_cast<char>('\a' + static_cast<char>(at));
}

bool isOctalCode(std::string_view text) {
  return text.size() >= 3 &&
         std::all_of(text.begin(), text.begin() + 3, [](char c) { return c >= '0' && c <= '7'; });
}

/// Appends what the escape at the front stands for (the text behind its backslash); how much it takes.
std::size_t appendEscaped(std::string& bytes, std::string_view text) {
  if (isOctalCode(text)) {
    bytes += static_cast<char>((text[0] - '0') * 64 + (text[1] - '0') * 8 + (text[2] - '0'));
    return 3;
  }
  const char character = text.empty() ? '\0' : characterOf(text.front());
  bytes += character == '\0' ? '\\' : character;
  return character == '\0' ? 0 : 1;
}

}  // namespace

std::string unescaped(std::string_view printed) {
  std::string bytes;
  bytes.reserve(printed.size());
  while (!printed.empty()) {
    const std::size_t plain = std::min(printed.find('\\'), printed.size());
    bytes += printed.substr(0, plain);
    printed.remove_prefix(plain);
    if (!printed.empty()) printed.remove_prefix(1 + appendEscaped(bytes, printed.substr(1)));
  }
  return bytes;
}

}  // namespace runtime
