#include "download/SerialSettings.h"

#include <algorithm>
#include <array>

namespace download {
namespace {

constexpr std::string_view bauds[] = {"115200", "19200", "9600"};

std::array<std::string_view, 3> firstLines(std::string_view text) {
  std::array<std::string_view, 3> lines;
  for (std::string_view& line : lines) {
    line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    if (line.ends_with('\r')) line.remove_suffix(1);
  }
  return lines;
}

}  // namespace

SerialSettings serialSettingsFrom(std::string_view text) {
  const auto [port, baud, window] = firstLines(text);
  if (port.size() != 4 || !port.starts_with("COM") || port[3] < '1' || port[3] > '3') return {};
  const bool known = std::find(std::begin(bauds), std::end(bauds), baud) != std::end(bauds);
  return {port[3] - '0', known ? std::string(baud) : std::string(), window == "open"};
}

std::string textOf(const SerialSettings& settings) {
  const std::string port = settings.comPort == 0 ? "" : "COM" + std::to_string(settings.comPort) + "\r\n";
  return port + settings.baudRate + "\r\n" + (settings.keepOpen ? "open" : "close") + "\r\n";
}

}  // namespace download
