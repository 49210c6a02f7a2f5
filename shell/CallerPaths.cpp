#include "shell/CallerPaths.h"

namespace shell {
namespace {

bool isWindowsPath(std::string_view text) {
  if (text.starts_with("\\\\")) return true;
  if (text.size() < 3 || text[1] != ':' || (text[2] != '\\' && text[2] != '/')) return false;
  const char letter = text[0];
  return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
}

}  // namespace

std::string toWindowsPath(const platform::DriveTable& drives, std::string_view callerFolderHost,
                          std::string_view text) {
  if (text.empty() || isWindowsPath(text)) return std::string(text);
  if (!text.starts_with('/')) return drives.toWindows(std::string(callerFolderHost).append("/").append(text));
  return drives.toWindows(drives.toHost(text).value_or(std::string(text)));
}

}  // namespace shell
