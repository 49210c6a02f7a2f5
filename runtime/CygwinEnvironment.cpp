#include "runtime/CygwinEnvironment.h"

#include "runtime/Settings.h"

namespace runtime {
namespace {

constexpr const char* mountTable = "software\\Cygnus Solutions\\Cygwin\\mounts v2\\/";
constexpr const char* mountTableOn64Bit = "software\\Wow6432Node\\Cygnus Solutions\\Cygwin\\mounts v2\\/";
constexpr const char* pathName = "Path";

std::string mountedRoot(const platform::Registry& registry, const char* key) {
  return registryText(registry, platform::Hive::LocalMachine, key, "native");
}

void reportBinaries(UserInterface& user, const std::string& tool) {
  user.message("Please make sure Cygwin binaries (" + tool +
                   ") are properly installed\r\nTry reinstalling Pakrune or Cygwin",
               Buttons::Ok, Icon::Critical, "Error");
}

/// `entry` is a search path's entry between semicolons, such as ";.;"; it goes in front where it is missing.
std::string withEntryInFront(std::string path, const std::string& entry) {
  if (path.find(';' + entry + ';') != std::string::npos) return path;
  return path.starts_with(';') ? entry + path : entry + ';' + path;
}

}  // namespace

std::string GetOSVersion(const std::optional<platform::SystemVersion>& version) {
  if (!version) return "";
  if (version->platformId == 1) return version->minor == 0 ? "95" : version->minor == 10 ? "98" : "";
  if (version->platformId != 2) return "Failed";
  if (version->major == 3) return "3.51";
  if (version->major == 4) return "4.0";
  if (version->major != 5) return "";
  return version->minor == 0 ? "2000" : version->minor == 1 ? "NT" : "";
}

CygwinEnvironment::CygwinEnvironment(platform::System system, modAPI& api, UserInterface& user,
                                     std::string exePath)
    : system_(system), api_(api), user_(user), exePath_(std::move(exePath)) {}

void CygwinEnvironment::AddDotToPath() {
  const std::string path = system_.environment.get(pathName);
  if (path.find(";.;") != std::string::npos) return;
  system_.environment.set(pathName, path + (path.ends_with(';') ? ".;" : ";.;"));
}

void CygwinEnvironment::FindCygwinRoot() {
  cygwinRoot_ = mountedRoot(system_.registry, mountTable);
  if (cygwinRoot_.empty()) cygwinRoot_ = mountedRoot(system_.registry, mountTableOn64Bit);
  if (cygwinRoot_.empty()) cygwinRoot_ = exePath_;
  cygwinRoot_ = withTrailingBackslash(cygwinRoot_);
}

bool CygwinEnvironment::toolStarts(const std::string& bin, const std::string& tool) {
  return system_.files.fullName(withTrailingBackslash(bin) + tool) == tool &&
         api_.RunCapture(bin, tool, {}, mayChange({})).text != startFailure;
}

bool CygwinEnvironment::rootWorks(const std::string& root) {
  const std::string bin = root + "bin";
  return toolStarts(bin, "tar.exe") && toolStarts(bin, "chmod.exe");
}

void CygwinEnvironment::CheckCygwinTools() {
  user_.letEventsRun();
  if (!rootWorks(cygwinRoot_)) {
    if (!rootWorks(exePath_)) return reportBinaries(user_, "tar.exe");
    cygwinRoot_ = exePath_;
  }
  cygwinBin_ = cygwinRoot_ + "bin\\";
  SetCygwinEnvironment();
  for (const char* tool : {"chmod.exe", "ls.exe"})
    if (!toolStarts(cygwinBin_, tool)) return reportBinaries(user_, tool);
}

void CygwinEnvironment::SetCygwinEnvironment() {
  std::string path = withEntryInFront(system_.environment.get(pathName), platform::pathEntry(cygwinBin_));
  if (path.find(";.;") == std::string::npos) path = path.starts_with(';') ? "." + path : ".;" + path;
  system_.environment.set(pathName, path);
  system_.environment.set("CYGWIN", "ntsec smbntsec");
}

}  // namespace runtime
