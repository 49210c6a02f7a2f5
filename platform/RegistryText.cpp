#include "platform/RegistryText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "platform/Ascii.h"

namespace platform {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view numberPrefix = "dword:";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

const char* hiveName(Hive hive) {
  return hive == Hive::LocalMachine ? "HKEY_LOCAL_MACHINE" : "HKEY_CURRENT_USER";
}

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view withoutLineEnd(std::string_view raw) {
  if (raw.ends_with('\n')) raw.remove_suffix(1);
  if (raw.ends_with('\r')) raw.remove_suffix(1);
  return raw;
}

std::string quoted(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out.append({'\\', c});
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (isControl(c)) {
      out.append(
          {'\\', 'x', digits[static_cast<std::size_t>(c) >> 4], digits[static_cast<std::size_t>(c) & 0xF]});
    } else {
      out += c;
    }
  }
  return out + '"';
}

/// Takes one escape, behind its backslash, off `text`.
std::optional<char> takeEscape(std::string_view& text) {
  constexpr std::string_view letters = "\"\\nrt";
  constexpr std::string_view meanings = "\"\\\n\r\t";
  if (text.empty()) return std::nullopt;
  const char letter = text.front();
  text.remove_prefix(1);
  const std::size_t known = letters.find(letter);
  if (known != letters.npos) return meanings[known];
  if (letter != 'x' || text.size() < 2) return std::nullopt;
  std::uint8_t code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + 2, code, 16);
  if (error != std::errc() || end != text.data() + 2) return std::nullopt;
  text.remove_prefix(2);
  return static_cast<char>(code);
}

/// Takes a text in double quotes off the beginning of `rest`.
std::optional<std::string> takeQuoted(std::string_view& rest) {
  if (!rest.starts_with('"')) return std::nullopt;
  rest.remove_prefix(1);
  std::string out;
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == '"') return out;
    if (isControl(c) && c != '\t') return std::nullopt;
    if (c != '\\') {
      out += c;
      continue;
    }
    const std::optional<char> escaped = takeEscape(rest);
    if (!escaped) return std::nullopt;
    out += *escaped;
  }
  return std::nullopt;
}

std::optional<std::uint32_t> number(std::string_view text) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<RegistryValue> parseValue(std::string_view text) {
  if (lowerAscii(text.substr(0, numberPrefix.size())) == numberPrefix) {
    const auto value = number(text.substr(numberPrefix.size()));
    if (!value) return std::nullopt;
    return RegistryValue{ValueType::Number, std::to_string(*value)};
  }
  const auto value = takeQuoted(text);
  if (!value || !text.empty()) return std::nullopt;
  return RegistryValue{ValueType::Text, *value};
}

/// The section of a heading, or empty for anything that is none.
std::string parseHeading(std::string_view text) {
  if (!text.starts_with('[') || !text.ends_with(']')) return "";
  const std::string section = lowerAscii(text.substr(1, text.size() - 2));
  for (const Hive hive : {Hive::LocalMachine, Hive::CurrentUser}) {
    if (section.starts_with(lowerAscii(hiveName(hive)) + '\\')) return section;
  }
  return "";
}

}  // namespace

std::size_t RegistryText::read(std::string_view bytes) {
  lines_.clear();
  std::string section;
  while (!bytes.empty()) {
    const std::size_t length = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
    Line line{std::string(bytes.substr(0, length)), section, "", std::nullopt, false};
    bytes.remove_prefix(length);
    if (!parse(line)) return lines_.size() + 1;
    section = line.section;
    lines_.push_back(std::move(line));
  }
  return 0;
}

bool RegistryText::parse(Line& line) const {
  std::string_view text = withoutLineEnd(line.raw);
  if (lines_.empty() && text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  text = trimmed(text);
  if (text.find('\0') != text.npos) return false;
  if (text.empty() || text.front() == ';' || text.front() == '#') return true;
  if (text.front() == '[') {
    line.isHeading = true;
    line.section = parseHeading(text);
    return !line.section.empty();
  }
  const auto name = takeQuoted(text);
  text = trimmed(text);
  if (!name || line.section.empty() || !text.starts_with('=')) return false;
  line.name = lowerAscii(*name);
  line.value = parseValue(trimmed(text.substr(1)));
  return line.value.has_value();
}

std::vector<RegistryText::Line>::const_iterator RegistryText::findLine(const std::string& section,
                                                                       std::string_view name) const {
  const auto found = std::find_if(lines_.rbegin(), lines_.rend(), [&](const Line& line) {
    return line.value && line.section == section && line.name == name;
  });
  return found == lines_.rend() ? lines_.end() : std::prev(found.base());
}

std::optional<RegistryValue> RegistryText::find(Hive hive, std::string_view key,
                                                std::string_view name) const {
  const auto line = findLine(lowerAscii(hiveName(hive) + ('\\' + std::string(key))), lowerAscii(name));
  return line == lines_.end() ? std::nullopt : line->value;
}

bool RegistryText::set(Hive hive, std::string_view key, std::string_view name, const RegistryValue& value) {
  const bool isText = value.type == ValueType::Text;
  if (std::any_of(key.begin(), key.end(), isControl) || (!isText && !number(value.text))) return false;
  const std::string heading = hiveName(hive) + ('\\' + std::string(key));
  const bool dosLines = !lines_.empty() && lines_.front().raw.ends_with("\r\n");
  const std::string lineEnd = dosLines ? "\r\n" : "\n";
  const std::string written = isText ? quoted(value.text) : std::string(numberPrefix) + value.text;
  Line line{quoted(name) + '=' + written + lineEnd, lowerAscii(heading), lowerAscii(name), value, false};
  const auto old = findLine(line.section, line.name);
  if (old != lines_.end())
    lines_[static_cast<std::size_t>(old - lines_.begin())] = std::move(line);
  else
    insert('[' + heading + ']' + lineEnd, std::move(line));
  return true;
}

/// Puts a new value behind the last one of its section (a comment below that may be about the next section),
/// or below a heading of its own.
void RegistryText::insert(std::string heading, Line line) {
  const auto last = std::find_if(lines_.rbegin(), lines_.rend(), [&line](const Line& other) {
    return other.section == line.section && (other.value || other.isHeading);
  });
  const bool known = last != lines_.rend();
  const std::string lineEnd = heading.ends_with("\r\n") ? "\r\n" : "\n";
  if (!lines_.empty() && (!known || last == lines_.rbegin()) && !lines_.back().raw.ends_with('\n'))
    lines_.back().raw += lineEnd;
  if (known) {
    lines_.insert(last.base(), std::move(line));
    return;
  }
  if (!lines_.empty()) lines_.push_back({lineEnd, lines_.back().section, "", std::nullopt, false});
  lines_.push_back({std::move(heading), line.section, "", std::nullopt, true});
  lines_.push_back(std::move(line));
}

std::string RegistryText::bytes() const {
  std::string out;
  for (const Line& line : lines_) out += line.raw;
  return out;
}

}  // namespace platform
