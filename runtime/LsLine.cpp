#include "runtime/LsLine.h"

namespace runtime {
namespace {

constexpr std::size_t columnLength = 10;
constexpr std::size_t triadLength = 3;

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

}  // namespace

std::string lsModeColumn(std::string_view line) {
  std::size_t length = 0;
  for (std::size_t characters = 0; length < line.size(); ++length)
    if (!continuesCharacter(line[length]) && ++characters > columnLength) break;
  return std::string(line.substr(0, length));
}

std::string lsModeString(std::string_view line) {
  const std::size_t blank = line.find(' ');
  return blank == line.npos ? std::string() : std::string(line.substr(0, blank));
}

char lsType(std::string_view line) { return line.empty() ? '\0' : line.front(); }

std::string_view lsTriad(std::string_view line, LsClass whose) {
  const std::size_t at = 1 + triadLength * static_cast<std::size_t>(whose);
  return at < line.size() ? line.substr(at, triadLength) : std::string_view();
}

}  // namespace runtime
