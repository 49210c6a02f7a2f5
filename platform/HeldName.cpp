#include "platform/HeldName.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace platform {
namespace {

constexpr char32_t heldFirst = 0xF000;
constexpr char32_t heldLast = 0xF0FF;

struct Decoded {
  char32_t code = 0;
  std::size_t length = 0;  ///< 0: the first byte does not begin a valid sequence
};

/// Bytes that the lead byte announces; 0 for a byte that cannot lead.
std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

/// Overlong forms, surrogates and codes behind the last one are not UTF-8.
bool allowed(char32_t code, std::size_t length) {
  if (length == 3) return code >= 0x800 && (code < 0xD800 || code > 0xDFFF);
  if (length == 4) return code >= 0x10000 && code <= 0x10FFFF;
  return true;
}

/// The character at the beginning of a text that is not empty.
Decoded decode(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t length = sequenceLength(lead);
  if (length == 0 || length > text.size()) return {};
  if (length == 1) return {lead, 1};
  char32_t code = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0U) != 0x80) return {};
    code = (code << 6) | (next & 0x3FU);
  }
  return allowed(code, length) ? Decoded{code, length} : Decoded{};
}

bool isControl(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

constexpr std::array<bool, 256> heldBytes = [] {
  std::array<bool, 256> held{};
  for (std::size_t byte = 0; byte < held.size(); ++byte) held[byte] = byte < 0x20 || byte >= 0x7F;
  for (const char byte : std::string_view("\\:*?\"<>|")) held[static_cast<unsigned char>(byte)] = true;
  return held;
}();

/// A byte that is ever held; a code point in the range that stands for another one is only itself, so
/// that a typed one can never become a '/' or a '.'.
bool isHeldByte(unsigned char byte) { return heldBytes[byte]; }

void appendHeld(std::string& out, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  out += '\xEF';
  out += static_cast<char>(0x80 | (value >> 6));
  out += static_cast<char>(0x80 | (value & 0x3F));
}

bool isHeld(const Decoded& at) {
  if (at.length != 3 || at.code < heldFirst || at.code > heldLast) return false;
  return isHeldByte(static_cast<unsigned char>(at.code - heldFirst));
}

/// Held characters begin with this byte; most names have none.
constexpr char heldLead = '\xEF';

/// Copies a text and hands each held byte to `release`, which appends what stands for it.
template <typename Release>
std::string replaceHeld(std::string_view inner, Release release) {
  if (inner.find(heldLead) == inner.npos) return std::string(inner);
  std::string out;
  out.reserve(inner.size());
  while (!inner.empty()) {
    const Decoded at = decode(inner);
    const std::size_t length = at.length == 0 ? 1 : at.length;
    if (isHeld(at))
      release(out, static_cast<unsigned char>(at.code - heldFirst));
    else
      out += inner.substr(0, length);
    inner.remove_prefix(length);
  }
  return out;
}

void appendCode(std::string& out, unsigned char byte) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  out += "\\x";
  out += digits[byte >> 4];
  out += digits[byte & 0xF];
}

/// The marks, embeddings, overrides and isolates of bidirectional text.
bool changesDirection(char32_t code) {
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

std::string withShownDirections(std::string_view text) {
  constexpr std::string_view leads = "\xD8\xE2";  // of those characters
  if (text.find_first_of(leads) == text.npos) return std::string(text);
  std::string out;
  while (!text.empty()) {
    const Decoded at = decode(text);
    const std::string_view bytes = text.substr(0, at.length == 0 ? 1 : at.length);
    if (changesDirection(at.code))
      for (const char byte : bytes) appendCode(out, static_cast<unsigned char>(byte));
    else
      out += bytes;
    text.remove_prefix(bytes.size());
  }
  return out;
}

}  // namespace

std::string holdName(std::string_view hostBytes) {
  if (std::none_of(hostBytes.begin(), hostBytes.end(),
                   [](char byte) { return isHeldByte(static_cast<unsigned char>(byte)); }))
    return std::string(hostBytes);
  std::string out;
  out.reserve(hostBytes.size());
  while (!hostBytes.empty()) {
    const Decoded at = decode(hostBytes);
    const std::size_t length = at.length == 0 ? 1 : at.length;
    const bool asItIs = at.length == 1 ? !isHeldByte(static_cast<unsigned char>(at.code))
                                       : at.length > 1 && (at.code < heldFirst || at.code > heldLast);
    for (const char byte : hostBytes.substr(0, length)) {
      if (asItIs)
        out += byte;
      else
        appendHeld(out, byte);
    }
    hostBytes.remove_prefix(length);
  }
  return out;
}

std::string releaseName(std::string_view inner) {
  return replaceHeld(inner, [](std::string& out, unsigned char byte) { out += static_cast<char>(byte); });
}

std::string shownName(std::string_view inner) {
  const std::string shown = replaceHeld(inner, [](std::string& out, unsigned char byte) {
    if (byte < 0x80 && !isControl(byte))
      out += static_cast<char>(byte);
    else
      appendCode(out, byte);
  });
  return withShownDirections(shown);
}

}  // namespace platform
