#include "shell/Program.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace shell {
namespace {

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::string hostProgramFolder() {
  std::error_code failed;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", failed);
  return failed ? std::string("/") : path.parent_path().string();
}

/// Empty for a folder that has been deleted.
std::string hostCallerFolder() {
  std::error_code failed;
  const auto path = std::filesystem::current_path(failed);
  return failed ? std::string() : path.string();
}

}  // namespace

Host::Host()
    : drives(platform::DriveTable::fromText(variable("PAKRUNE_DRIVES"), variable("HOME"))),
      files(drives),
      environment(drives, environ),
      registry(platform::Registry::forUser()),
      userSettings(registry),
      runner(drives, environment, drives.toWindows(hostProgramFolder())) {
  programFolder = runtime::withTrailingBackslash(drives.toWindows(hostProgramFolder()));
  const std::string caller = hostCallerFolder();
  if (!caller.empty()) callerFolder = drives.toWindows(caller);
}

void Host::confineTools() {
  confinement.emplace(hostProgramFolder() + "/bin/confine");
  runner.confine(*confinement);
}

Program::Program(platform::System host, std::string exePath, runtime::UserInterface& whoever)
    : system(host),
      user(whoever),
      settings(host.registry, host.settings, log),
      api(host, whoever),
      cygwin(host, api, whoever, std::move(exePath)) {
  system.registry.setReport([this](const std::string& line) { log.append(line); });
}

}  // namespace shell
