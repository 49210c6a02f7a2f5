#include "shell/CallerPaths.h"

#include "platform/ResolvedPath.h"

namespace shell {
namespace {

bool isWindowsPath(std::string_view text) {
  if (text.starts_with("\\\\")) return true;
  if (text.size() < 3 || text[1] != ':' || (text[2] != '\\' && text[2] != '/')) return false;
  const char letter = text[0];
  return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
}

/// A folder that is told by ".." alone would have no name of its own.
std::string withoutDotDot(const platform::DriveTable& drives, const std::string& path) {
  const bool atEnd = path.ends_with("\\..");
  if (!atEnd && path.find("\\..\\") == std::string::npos) return path;
  const std::string real =
      atEnd ? platform::resolvedFolder(drives, path) : platform::resolvedPath(drives, path);
  return real.empty() ? path : real;
}

}  // namespace

std::string toWindowsPath(const platform::DriveTable& drives, std::string_view callerFolderHost,
                          std::string_view text) {
  if (text.empty() || isWindowsPath(text)) return std::string(text);
  const std::string host = text.starts_with('/') ? drives.toHost(text).value_or(std::string(text))
                                                 : std::string(callerFolderHost).append("/").append(text);
  return withoutDotDot(drives, drives.toWindows(host));
}

}  // namespace shell
