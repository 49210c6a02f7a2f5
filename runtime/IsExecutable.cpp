#include "runtime/IsExecutable.h"

#include <algorithm>
#include <string>

#include "platform/Ascii.h"

namespace runtime {
namespace {

constexpr std::size_t shortestName = 4;
constexpr std::size_t bytesRead = 10;

}  // namespace

bool IsExecutableName(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (name.size() < shortestName || dot == name.npos) return false;
  const std::string extension = platform::lowerAscii(name.substr(dot));
  return std::find(executableExtensions.begin(), executableExtensions.end(), extension) !=
         executableExtensions.end();
}

bool IsExecutable(const platform::Files& files, std::string_view path) {
  if (IsExecutableName(path)) return true;
  const std::string start = files.readBytes(path, bytesRead).value_or("");
  return start.starts_with("#!/bin/sh") || (start.size() > 3 && start.compare(1, 3, "ELF") == 0);
}

}  // namespace runtime
