#include "dos2unix_text.h"

#include <cstring>

#include "platform/HeldName.h"
#include "platform/TextBytes.h"

namespace dos2unix {
namespace {

constexpr char endMark = 0x1A;
constexpr std::string_view lookedFor[] = {"done.", "skipping binary file"};

std::string escaped(char c) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  return {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
}

}  // namespace

void Scan::add(std::string_view block) {
  if (block.empty()) return;
  binary_ = binary_ || endMark_;  // something follows it
  endMark_ = block.back() == endMark;
  if (endsInCr_ && block.front() == '\n') dosLines_ = true;
  endsInCr_ = block.back() == '\r';
  dosLines_ = dosLines_ || block.find("\r\n") != block.npos;
  if (endMark_) block.remove_suffix(1);
  binary_ = binary_ || platform::holdsControls(block);
}

std::size_t convert(char* block, std::size_t size, bool& carriedCr) {
  char* to = block;
  const char* from = block;
  const char* const end = block + size;
  carriedCr = false;
  while (from != end) {
    const auto* cr = static_cast<const char*>(std::memchr(from, '\r', static_cast<std::size_t>(end - from)));
    const char* const stop = cr == nullptr ? end : cr;
    const auto length = static_cast<std::size_t>(stop - from);
    if (to != from) std::memmove(to, from, length);
    to += length;
    from = stop;
    if (cr == nullptr) break;
    ++from;
    carriedCr = from == end;
    if (!carriedCr && *from != '\n') *to++ = '\r';
  }
  return static_cast<std::size_t>(to - block);
}

std::string shown(std::string_view name) {
  std::string text = platform::shownName(platform::holdName(name));
  for (const std::string_view word : lookedFor)
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at))
      text.replace(at, 1, escaped(text[at]));
  return text;
}

}  // namespace dos2unix
