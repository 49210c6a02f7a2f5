#include "archive/ListingLine.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/CompressorWords.h"
#include "platform/HeldName.h"
#include "runtime/EscapeQuoting.h"

namespace archive {
namespace {

constexpr std::size_t modeLength = 10;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Takes `count` or more digits off the front.
bool takeDigits(std::string_view& text, std::size_t count, bool more) {
  std::size_t digits = 0;
  while (digits < text.size() && isDigit(text[digits])) ++digits;
  if (digits < count || (!more && digits != count)) return false;
  text.remove_prefix(digits);
  return true;
}

bool take(std::string_view& text, char c) {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

/// How long the date and time at the front are ("2006-05-04 13:22", also with seconds); 0 when there are
/// none.
std::size_t dateTimeLength(std::string_view text) {
  std::string_view rest = text;
  take(rest, '-');
  const bool minutes = takeDigits(rest, 1, true) && take(rest, '-') && takeDigits(rest, 2, false) &&
                       take(rest, '-') && takeDigits(rest, 2, false) && take(rest, ' ') &&
                       takeDigits(rest, 2, false) && take(rest, ':') && takeDigits(rest, 2, false);
  if (!minutes) return 0;
  if (take(rest, ':') && !takeDigits(rest, 2, false)) return 0;
  if (take(rest, '.') && !takeDigits(rest, 1, true)) return 0;
  return rest.starts_with(' ') ? text.size() - rest.size() : 0;
}

bool looksLikeMode(std::string_view line) {
  constexpr std::string_view kinds = "-lhdcbpCDs?";
  constexpr std::string_view bits = "rwxsStT-";
  return line.size() > modeLength && kinds.find(line.front()) != kinds.npos &&
         line.substr(1, modeLength - 1).find_first_not_of(bits) == line.npos;
}

/// Owner and size stand before the date: the size is the last word, whatever the owner's name holds.
void splitOwnerAndSize(std::string_view text, ArchiveEntry& entry) {
  text = withoutBlanks(text);
  const std::size_t blank = text.rfind(' ');
  entry.size = blank == text.npos ? text : text.substr(blank + 1);
  entry.owner = blank == text.npos ? std::string_view() : withoutBlanks(text.substr(0, blank));
}

std::string_view takeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(word.size());
  return word;
}

ArchiveEntry byCountingWords(std::string_view mode, std::string_view rest) {
  ArchiveEntry entry;
  entry.mode = mode;
  entry.owner = takeWord(rest);
  entry.size = takeWord(rest);
  const std::string_view date = takeWord(rest);
  const std::string_view time = takeWord(rest);
  if (!date.empty()) entry.dateTime = {date.data(), static_cast<std::size_t>(time.end() - date.begin())};
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  entry.path = rest;
  return entry;
}

}  // namespace

std::optional<ArchiveEntry> parseListingLine(std::string_view line) {
  if (!looksLikeMode(line)) return std::nullopt;
  const std::string_view mode = line.substr(0, line.find(' '));
  const std::string_view rest = line.substr(mode.size());
  for (std::size_t blank = rest.find(' '); blank != rest.npos; blank = rest.find(' ', blank + 1)) {
    const std::size_t length = dateTimeLength(rest.substr(blank + 1));
    if (length == 0) continue;
    ArchiveEntry entry;
    entry.mode = mode;
    splitOwnerAndSize(rest.substr(0, blank), entry);
    entry.dateTime = rest.substr(blank + 1, length);
    entry.path = rest.substr(blank + 1 + length + 1);  // one blank: a name may begin with more
    return entry;
  }
  return byCountingWords(mode, rest);
}

std::optional<std::uint64_t> byteCount(const ArchiveEntry& entry) {
  const char* const end = entry.size.data() + entry.size.size();
  std::uint64_t bytes = 0;
  const auto read = std::from_chars(entry.size.data(), end, bytes);
  return read.ec == std::errc() && read.ptr == end ? std::optional(bytes) : std::nullopt;
}

std::vector<EntryPath> linkReadings(const ArchiveEntry& entry) {
  std::vector<EntryPath> readings;
  const std::string_view arrow = entry.mode.front() == 'l' ? " -> " : " link to ";
  std::size_t at = entry.isLink() ? entry.path.find(arrow) : entry.path.npos;
  for (; at != entry.path.npos; at = entry.path.find(arrow, at + 1))
    readings.push_back({entry.path.substr(0, at), entry.path.substr(at + arrow.size())});
  if (readings.empty()) readings.push_back({entry.path, std::nullopt});
  return readings;
}

EntryPath splitLinkText(const ArchiveEntry& entry) { return linkReadings(entry).front(); }

std::string heldName(std::string_view printed) {
  return platform::holdName(printed.find('\\') == printed.npos ? std::string(printed)
                                                               : runtime::unescaped(printed));
}

bool isRemark(std::string_view line) {
  constexpr std::array<std::string_view, 8> speakers = {
      "tar: ", "tar (child): ", "gzip: ", "bzip2: ", "pigz: ", "lbzip2: ", "xz: ", "zstd: "};
  // What bzip2 1.0.8 prints behind its own name; no printed name begins with a tab.
  constexpr std::array<std::string_view, 5> advice = {
      "\t", "It is possible that the compressed file(s) have become corrupted.",
      "You can use the -tvv option to test integrity of such files.",
      "You can use the `bzip2recover' program to attempt to recover",
      "data from undamaged sections of corrupted files."};
  const auto begins = [line](std::string_view text) { return line.starts_with(text); };
  return std::any_of(speakers.begin(), speakers.end(), begins) ||
         std::any_of(advice.begin(), advice.end(), begins);
}

bool isArRemark(std::string_view line) { return line.starts_with("ar: ") || line.starts_with("no entry "); }

bool isHarmlessRemark(std::string_view line) {
  return line.starts_with(platform::tarEndMissing) ||
         line.starts_with("tar: Ignoring unknown extended header keyword") ||
         line.starts_with("tar: Removing leading `");
}

}  // namespace archive
