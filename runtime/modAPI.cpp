#include "runtime/modAPI.h"

#include <algorithm>
#include <cmath>

namespace runtime {
namespace {

constexpr const char* heldQuote = "\xEF\x80\xA2";  // names the same file as '"' and cannot end an argument

/// Other systems need a helper program to start console tools, which there is none of here.
bool startsToolsDirectly(const std::string& osVersion) {
  return osVersion.empty() || osVersion == "2000" || osVersion == "NT";
}

std::string firstWord(const std::string& commandLine) { return commandLine.substr(0, commandLine.find(' ')); }

}  // namespace

std::string ToCygwinPath(std::string_view path) {
  if (path.empty()) return "";
  std::string out = "\"";
  if (path.substr(1, 2) == ":\\") out += "/cygdrive/";
  for (const char c : path) {
    if (c == '"')
      out += heldQuote;
    else if (c != ':')
      out += c == '\\' ? '/' : c;
  }
  return out + '"';
}

std::int32_t PixelsToTwips(std::int32_t pixels, double dotsPerInch) {
  if (!(dotsPerInch > 0)) return 0;
  return static_cast<std::int32_t>(std::nearbyint(pixels * 1440.0 / dotsPerInch));
}

std::string GetFileName(std::string_view path) {
  return std::string(path.substr(path.rfind('\\') + 1));  // npos + 1 is the beginning
}

std::string getFilePath(std::string_view path) { return std::string(path.substr(0, path.rfind('\\') + 1)); }

std::string withTrailingBackslash(std::string_view path) {
  std::string text(path);
  if (!text.ends_with('\\')) text += '\\';
  return text;
}

std::string withoutTrailingBackslash(std::string_view path) {
  constexpr std::size_t rootLength = 3;
  while (path.size() > rootLength && path.back() == '\\') path.remove_suffix(1);
  return std::string(path);
}

modAPI::modAPI(platform::System system, UserInterface& user) : system_(system), user_(user) {}

std::string modAPI::RunCapture(const std::string& toolFolder, const std::string& commandLine,
                               const std::string& workingFolder) {
  SetCurDir(toolFolder);
  user_.letEventsRun();
  if (!startsToolsDirectly(osVersion_)) return startFailure;
  const ToolRunning::Scope running(toolRunning_);
  platform::RunResult result = system_.runner.capture(
      {commandLine, workingFolder.empty() ? toolFolder : workingFolder, toolFolder}, [this] {
        user_.repaint();
        return true;
      });
  if (result.pipeFailed) {
    user_.message("CreatePipe failed. Error: " + std::to_string(result.systemError), Buttons::Ok, Icon::None);
    return "";
  }
  return result.status == platform::notStarted ? startFailure : std::move(result.text);
}

int modAPI::RunAndWait(const std::string& commandLine, const std::string& workingFolder) {
  const ToolRunning::Scope running(toolRunning_);
  lastConsoleText_.clear();
  user_.consoleOpened(firstWord(commandLine));
  // The tools come first in PATH; the current folder may be the user's, where no program is looked for.
  const platform::RunResult result = system_.runner.runVisible(
      {commandLine, workingFolder.empty() ? currentFolder_ : workingFolder, ""},
      [this](std::string_view bytes) {
        lastConsoleText_ += bytes;
        return user_.consoleOutput(bytes);
      },
      [this] { return user_.consoleStep(); });
  user_.consoleClosed();
  return result.status;
}

bool modAPI::ProbeTool(const std::string& toolPath) const {
  return system_.files.fileExists(toolPath) || system_.files.folderExists(toolPath);
}

void modAPI::SetCurDir(const std::string& folder) {
  if (system_.files.folderExists(folder)) currentFolder_ = folder;
}

std::string modAPI::GetTempDir() const { return GetLongPath(platform::temporaryFolder(system_.drives)); }

std::string modAPI::GetLongPath(const std::string& path) const {
  return platform::longName(system_.files, path);
}

}  // namespace runtime
