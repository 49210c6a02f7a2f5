#include "platform/ResolvedPath.h"

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace platform {
namespace {

std::string realFolder(const std::string& host) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(host.c_str(), nullptr), std::free);
  return real ? real.get() : host;
}

}  // namespace

std::string resolvedPath(const DriveTable& drives, std::string_view path) {
  std::optional<std::string> host = drives.toHost(path);
  if (!host) return "";
  while (host->size() > 1 && host->back() == '/') host->pop_back();
  const std::size_t slash = host->rfind('/');
  const std::string name = host->substr(slash + 1);
  if (name.empty() || name == "..") return drives.toWindows(realFolder(*host));
  const std::string folder = realFolder(slash == 0 ? "/" : host->substr(0, slash));
  return drives.toWindows(folder == "/" ? '/' + name : folder + '/' + name);
}

std::string linkEnd(const DriveTable& drives, const std::string& path) {
  constexpr int mostLinks = 40;
  std::string at = path;
  for (int links = 0; links < mostLinks; ++links) {
    const std::filesystem::path host = drives.toHost(at).value_or("");
    std::error_code noLink;
    const std::filesystem::path target = std::filesystem::read_symlink(host, noLink);
    if (noLink) return at;
    at = resolvedPath(drives, drives.toWindows((host.parent_path() / target).string()));
  }
  return path;
}

std::string resolvedFolder(const DriveTable& drives, std::string_view folder) {
  const std::optional<std::string> host = drives.toHost(folder);
  return host ? drives.toWindows(realFolder(*host)) : "";
}

std::string withoutDotDot(const DriveTable& drives, const std::string& path) {
  const bool atEnd = path.ends_with("\\..");
  if (!atEnd && path.find("\\..\\") == std::string::npos) return path;
  const std::string real = atEnd ? resolvedFolder(drives, path) : resolvedPath(drives, path);
  return real.empty() ? path : real;
}

}  // namespace platform
