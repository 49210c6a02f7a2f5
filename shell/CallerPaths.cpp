#include "shell/CallerPaths.h"

#include "platform/HeldName.h"
#include "platform/ResolvedPath.h"

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
  if (text.empty()) return "";
  if (isWindowsPath(text)) return platform::withoutDotDot(drives, platform::holdPath(text));
  const std::string host = text.starts_with('/') ? drives.toHost(text).value_or(std::string(text))
                                                 : std::string(callerFolderHost).append("/").append(text);
  return platform::withoutDotDot(drives, drives.toWindows(host));
}

}  // namespace shell
