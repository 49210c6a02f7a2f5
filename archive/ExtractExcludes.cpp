#include "archive/ExtractExcludes.h"

#include <string_view>

#include "platform/HeldName.h"
#include "runtime/modAPI.h"

namespace archive {
namespace {

constexpr std::string_view blanks = " \t\v\f\r";  ///< that are taken off a line's end

std::string quotedExcludes(const std::vector<std::string>& excludes) {
  std::string text = "--anchored --no-wildcards ";
  for (const std::string& exclude : excludes) text += "\"--exclude=" + exclude + "\" ";
  return text;
}

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

}  // namespace

std::string excludeOptions(const std::vector<std::string>& excludes) {
  return excludes.empty() ? "" : quotedExcludes(excludes);
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
         runtime::ToCygwinPath(patterns) + ' ';
}

std::string spareOptions(const std::vector<std::string>& folders, bool recursion) {
  if (folders.empty()) return "";
  std::vector<std::string> names;
  for (std::string name : folders) {
    while (name.size() > 1 && name.ends_with('/')) name.pop_back();
    names.push_back(std::move(name));
  }
  return "--no-recursion " + quotedExcludes(names) + (recursion ? "--recursion " : "");
}

}  // namespace archive
