#include "archive/ArMembers.h"

#include <array>
#include <charconv>
#include <string_view>

namespace archive {
namespace {

constexpr std::string_view arMagic = "!<arch>\n";
constexpr std::string_view thinMagic = "!<thin>\n";
constexpr std::string_view headerEnd = "`\n";
constexpr const char* cutShort = "Unexpected end of file";

using Header = std::array<char, 60>;

std::string_view filled(const Header& header, std::size_t count) { return {header.data(), count}; }

/// How many bytes follow a header, filled up to an even number; nothing where it is none, which ar tells.
std::optional<std::uint64_t> memberLength(std::string_view header) {
  if (!header.ends_with(headerEnd)) return std::nullopt;
  const std::string_view digits = header.substr(48, 10);
  std::uint64_t size = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), size).ec != std::errc())
    return std::nullopt;
  return size;
}

}  // namespace

std::string arProblem(const platform::Files& files, const std::string& path) {
  platform::RegularFile file = files.openFile(path);
  Header header{};
  if (!file || file.read(header.data(), arMagic.size()) != arMagic.size()) return {};
  const std::string_view magic = filled(header, arMagic.size());
  if (magic == thinMagic) return "A thin archive holds none of its members";
  if (magic != arMagic) return {};
  for (std::uint64_t at = arMagic.size(); at < file.size();) {
    const auto count = file.readAt(at, header.data(), header.size());
    if (!count) return {};
    if (*count < header.size()) return filled(header, *count) == "\n" ? "" : cutShort;
    const auto length = memberLength(filled(header, header.size()));
    if (!length) return {};
    if (*length > file.size() - at - header.size()) return cutShort;
    at += header.size() + *length + *length % 2;
  }
  return {};
}

}  // namespace archive
