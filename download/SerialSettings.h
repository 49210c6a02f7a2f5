#pragma once

#include <string>
#include <string_view>

namespace download {

/// What the serial download is asked for, and the settings file that keeps it: three lines, each ended by
/// CR LF: "COM1" to "COM3", the baud text, "open" or "close".
struct SerialSettings {
  int comPort = 1;                  ///< 1 to 3; 0: none chosen
  std::string baudRate = "115200";  ///< "9600", "19200", "115200"; empty: none chosen
  bool keepOpen = false;            ///< the console stays after its key
};

inline constexpr const char* settingsFile = "savedsettings.dlo";

/// A first line that names no port gives the defaults, whatever follows. A baud text that is none of the
/// three, or a line that is missing, leaves no baud rate chosen.
SerialSettings serialSettingsFrom(std::string_view text);
std::string textOf(const SerialSettings& settings);

}  // namespace download
