#include "platform/InternetAddress.h"

#include <charconv>

namespace platform {
namespace {

constexpr std::size_t octetDigits = 3;
constexpr int octets = 4;

template <typename Number>
std::optional<Number> decimal(std::string_view text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

std::optional<std::uint32_t> ipv4Of(std::string_view text) {
  std::uint32_t address = 0;
  for (int i = 0; i < octets; ++i) {
    const bool last = i + 1 == octets;
    const std::size_t end = last ? text.size() : text.find('.');
    if (end == text.npos || end > octetDigits) return std::nullopt;
    const auto octet = decimal<std::uint8_t>(text.substr(0, end));
    if (!octet) return std::nullopt;
    address = address << 8 | *octet;
    if (!last) text.remove_prefix(end + 1);
  }
  return address;
}

std::optional<std::uint16_t> portOf(std::string_view text) {
  const auto port = decimal<std::uint16_t>(text);
  return port == 0 ? std::nullopt : port;
}

}  // namespace platform
