#include "runtime/PermissionTest.h"

#include <chrono>

#include "platform/FolderLock.h"

namespace runtime {
namespace {

constexpr const char* testName = "test123456789";
constexpr const char* testText = "This is a test file\r\n";
constexpr const char* allPermissions = "rwxrwxrwx";

/// Characters 2 to 10 of a long-format line of ls: the mode behind the letter of the type.
std::string permissionsOf(const std::string& line) { return line.size() < 2 ? "" : line.substr(1, 9); }

constexpr std::chrono::seconds patience{5};  // four programs started at once are done sooner

/// What is wrong with a run of chmod; empty when it was silent and ended well.
std::string wrongWith(const ToolResult& chmod) {
  if (!chmod.text.empty() || chmod.good()) return chmod.text;
  return howItEnded(chmod, "chmod");
}

void reportChmod(Log& log, const std::string& said) {
  const std::string line = "ERROR: Unable to Set Permissions (chmod.exe)";
  log.append(said == startFailure ? line : line + "\r\n" + said);
}

/// False when the modes did not stick.
bool testOn(const Services& services, const std::string& path) {
  const std::string& bin = services.cygwin.cygwinBin();
  const std::string cygwinPath = ToCygwinPath(path);
  const ToolResult chmod =
      services.api.RunCapture(bin, "chmod.exe 777 " + cygwinPath, {}, mayChange({getFilePath(path)}));
  if (chmod.stopped) return true;
  if (const std::string wrong = wrongWith(chmod); !wrong.empty()) {
    reportChmod(services.log, wrong);
    return true;
  }
  const ToolResult ls = services.api.RunCapture(bin, "ls.exe -ln " + cygwinPath);
  if (ls.stopped || permissionsOf(ls.text) == allPermissions) return true;
  services.log.append("ERROR: Permission test failed (chmod.exe)");
  return false;
}

}  // namespace

void RunPermissionTest(const Services& services, const std::function<void()>& showNotice) {
  const platform::Files& files = services.system.files;
  const std::string folder = services.cygwin.GetEXEPath();
  const std::string path = folder + testName;
  const platform::Stop stop = services.system.busy.stop();
  bool stuck = true;
  {
    // One at a time: another program's test would take this one's file away.
    const platform::FolderLock lock(services.system.drives, folder, patience,
                                    [&stop] { return !stop.requested(); });
    if (!lock || !files.writeText(path, testText)) {
      services.log.append("Permission test not run: unable to create " + path);
      return;
    }
    stuck = testOn(services, path);
    files.deleteFile(path);
  }
  if (!stuck && services.settings.firstRun()) showNotice();
}

}  // namespace runtime
