#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace platform {

/// An IPv4 address of four octets in decimal, whatever zeros stand in front: "127.0.0.010" is 127.0.0.10.
/// In host order; nullopt for any other text.
std::optional<std::uint32_t> ipv4Of(std::string_view text);

/// A port of 1 to 65535, in decimal.
std::optional<std::uint16_t> portOf(std::string_view text);

}  // namespace platform
