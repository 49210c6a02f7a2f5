#pragma once

#include <string_view>

namespace platform {

/// Whether there is a control character that no text has: all below blank except tab, line feed, vertical
/// tab, form feed, carriage return, backspace and escape, and DEL. Without a branch, so that the compiler
/// takes many bytes at a time.
inline bool holdsControls(std::string_view block) {
  unsigned found = 0;
  for (const char c : block) {
    const auto byte = static_cast<unsigned char>(c);
    const unsigned low = byte < 0x20;
    const unsigned text = (byte >= '\b') & (byte <= '\r');
    found |= (low & (text ^ 1U) & (byte != 0x1B)) | (byte == 0x7F);
  }
  return found != 0;
}

}  // namespace platform
