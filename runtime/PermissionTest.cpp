#include "runtime/PermissionTest.h"

namespace runtime {
namespace {

constexpr const char* testName = "test123456789";
constexpr const char* testText = "This is a test file\r\n";
constexpr const char* allPermissions = "rwxrwxrwx";

/// Characters 2 to 10 of a long-format line of ls: the mode behind the letter of the type.
std::string permissionsOf(const std::string& line) { return line.size() < 2 ? "" : line.substr(1, 9); }

/// Empty when chmod was silent.
std::string setAll(const Services& services, const std::string& cygwinPath) {
  return services.api.RunCapture(services.cygwin.cygwinBin(), "chmod.exe 777 " + cygwinPath).text;
}

void reportChmod(Log& log, const std::string& said) {
  const std::string line = "ERROR: Unable to Set Permissions (chmod.exe)";
  log.append(said == startFailure ? line : line + "\r\n" + said);
}

}  // namespace

void RunPermissionTest(const Services& services, const std::function<void()>& showNotice) {
  const platform::Files& files = services.system.files;
  const std::string path = services.cygwin.GetEXEPath() + testName;
  if (!files.writeText(path, testText)) {
    services.log.append("Permission test not run: unable to create " + path);
    return;
  }
  const std::string cygwinPath = ToCygwinPath(path);
  const std::string said = setAll(services, cygwinPath);
  if (!said.empty()) {
    reportChmod(services.log, said);
  } else {
    const std::string line =
        services.api.RunCapture(services.cygwin.cygwinBin(), "ls.exe -ln " + cygwinPath).text;
    if (permissionsOf(line) != allPermissions) {
      services.log.append("ERROR: Permission test failed (chmod.exe)");
      if (services.settings.firstRun()) showNotice();
    }
  }
  files.deleteFile(path);
}

}  // namespace runtime
