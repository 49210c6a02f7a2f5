#include "browser/FoldCase.h"

#include <locale.h>
#include <wchar.h>
#include <wctype.h>

#include <algorithm>

#include "platform/Ascii.h"

namespace browser {
namespace {

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Makes the host's tables of letters the calling thread's for as long as it lives.
class LetterTables {
 public:
  LetterTables() : previous_(uselocale(tables())) {}
  ~LetterTables() { uselocale(previous_); }
  LetterTables(const LetterTables&) = delete;
  LetterTables& operator=(const LetterTables&) = delete;

 private:
  static locale_t tables() {
    static const locale_t made = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return made;
  }
  locale_t previous_;
};

void appendFolded(std::string& out, wchar_t code) {
  char bytes[16];
  mbstate_t state{};
  const std::size_t length =
      wcrtomb(bytes, static_cast<wchar_t>(towlower(static_cast<wint_t>(code))), &state);
  if (length != static_cast<std::size_t>(-1)) out.append(bytes, length);
}

}  // namespace

std::string foldCase(std::string_view text) {
  const std::string folded = platform::lowerAscii(text);
  if (isAscii(text)) return folded;
  const LetterTables tables;
  std::string out;
  mbstate_t state{};
  for (std::size_t at = 0; at < folded.size();) {
    wchar_t code = 0;
    const std::size_t length = mbrtowc(&code, folded.data() + at, folded.size() - at, &state);
    if (length == 0 || length > folded.size() - at) return folded;  // not UTF-8: as it stands
    appendFolded(out, code);
    at += length;
  }
  return out;
}

}  // namespace browser
