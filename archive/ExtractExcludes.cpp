#include "archive/ExtractExcludes.h"

#include <string_view>

#include "platform/HeldName.h"
#include "runtime/modAPI.h"

namespace archive {
namespace {

constexpr std::string_view blanks = " \t\v\f\r";  ///< that are taken off a line's end

std::string patternFor(std::string_view bytes) {
  constexpr std::string_view special = "\\*?[";
  std::string pattern;
  for (const char byte : bytes) {
    if (byte == '\n') {
      pattern += "[[:cntrl:]]";
      continue;
    }
    if (special.find(byte) != special.npos) pattern += '\\';
    pattern += byte;
  }
  if (blanks.find(pattern.back()) != blanks.npos)
    pattern = pattern.substr(0, pattern.size() - 1) + '[' + pattern.back() + ']';
  return pattern;
}

/// With a backslash in front no absolute name reads as a path on disk.
std::string quotedPattern(const std::string& name) {
  const std::string pattern = platform::holdName(patternFor(platform::releaseName(name)));
  return std::string("\"--exclude=") + (name.starts_with('/') ? "\\" : "") + pattern + "\" ";
}

}  // namespace

std::string excludeOptions(const std::vector<std::string>& excludes) {
  if (excludes.empty()) return "";
  std::string text = "--anchored --no-wildcards ";
  for (const std::string& exclude : excludes) text += "\"--exclude=" + exclude + "\" ";
  return text;
}

ExcludeFiles excludeFiles(const std::vector<std::string>& excludes) {
  ExcludeFiles files;
  for (const std::string& exclude : excludes) {
    const std::string bytes = platform::releaseName(exclude);
    if (bytes.empty()) continue;
    if (bytes.find('\n') != bytes.npos || blanks.find(bytes.back()) != blanks.npos)
      files.patterns += patternFor(bytes) + '\n';
    else
      files.names += bytes + '\n';
  }
  return files;
}

std::string excludeFileOptions(const std::string& names, const std::string& patterns) {
  return "--anchored --no-wildcards -X " + runtime::ToCygwinPath(names) + " --wildcards -X " +
         runtime::ToCygwinPath(patterns) + " --no-wildcards ";
}

std::string spareOptions(const std::vector<std::string>& folders, bool recursion) {
  if (folders.empty()) return "";
  std::string text = "--no-recursion --anchored --wildcards ";
  for (std::string name : folders) {
    while (name.size() > 1 && name.ends_with('/')) name.pop_back();
    text += quotedPattern(name);
  }
  return text + "--no-wildcards " + (recursion ? "--recursion " : "");
}

}  // namespace archive
