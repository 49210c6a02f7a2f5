#include "runtime/IsExecutable.h"

#include <algorithm>
#include <string>

#include "platform/Ascii.h"

namespace runtime {
namespace {

constexpr std::size_t shortestName = 4;

}  // namespace

bool IsExecutableName(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (name.size() < shortestName || dot == name.npos) return false;
  const std::string extension = platform::lowerAscii(name.substr(dot));
  return std::find(executableExtensions.begin(), executableExtensions.end(), extension) !=
         executableExtensions.end();
}

bool startsAsExecutable(std::string_view start) {
  return start.starts_with("#!/bin/sh") || (start.size() > 3 && start.substr(1, 3) == "ELF");
}

bool IsExecutable(const platform::Files& files, std::string_view path) {
  return IsExecutableName(path) || startsAsExecutable(files.readBytes(path, executableStart).value_or(""));
}

}  // namespace runtime
