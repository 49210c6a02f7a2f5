#include "runtime/modAPI.h"

#include <algorithm>
#include <cmath>

#include "runtime/NameCount.h"

namespace runtime {
namespace {

constexpr const char* heldQuote = "\xEF\x80\xA2";  // names the same file as '"' and cannot end an argument

/// Other systems need a helper program to start console tools, which there is none of here.
bool startsToolsDirectly(const std::string& osVersion) {
  return osVersion.empty() || osVersion == "2000" || osVersion == "NT";
}

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

platform::RunManner mayChange(std::vector<std::string> folders) {
  return {{{std::move(folders), false}}, {}};
}

platform::RunManner mayChangeForAll(std::vector<std::string> folders) {
  return {{{std::move(folders), true}}, {}};
}

modAPI::modAPI(platform::System system, UserInterface& user) : system_(system), user_(user) {}

/// A tool that got the signal itself may be gone before anybody ended it.
ToolResult modAPI::finished(platform::RunResult raw) const {
  const bool stopped = raw.stopped || (raw.status != 0 && system_.busy.stopRequested());
  ToolResult result{std::move(raw.text), raw.status, raw.systemError, stopped};
  if (result.status == platform::notStarted && !stopped) result.text = startFailure;
  return result;
}

ToolResult modAPI::RunCapture(const std::string& toolFolder, const std::string& commandLine,
                              const std::string& workingFolder, const platform::RunManner& manner) {
  const platform::Busy::Scope busy(system_.busy);
  SetCurDir(toolFolder);
  user_.letEventsRun();
  const platform::Stop stop = system_.busy.stop();
  if (stop.requested()) return finished({"", platform::notStarted, 0, false, true});
  if (!startsToolsDirectly(osVersion_)) return finished({});
  platform::RunResult raw = system_.runner.capture(
      {commandLine, workingFolder.empty() ? toolFolder : workingFolder, toolFolder, manner}, [this, &stop] {
        user_.letEventsRun();
        return !stop.requested();
      });
  if (raw.pipeFailed) {
    user_.message("CreatePipe failed. Error: " + std::to_string(raw.systemError), Buttons::Ok, Icon::None);
    return {"", raw.status, raw.systemError, false};
  }
  return finished(std::move(raw));
}

ToolResult modAPI::RunAndWait(const VisibleRun& run, const std::string& commandLine,
                              const std::string& workingFolder, const platform::RunManner& manner) {
  const platform::Busy::Scope busy(system_.busy);
  const platform::Stop stop = system_.busy.stop();
  if (stop.requested()) return finished({"", platform::notStarted, 0, false, true});
  std::string text;
  NameCount names;
  user_.consoleOpened(run);
  // The tools come first in PATH; the current folder may be the user's, where no program is looked for.
  platform::RunResult raw = system_.runner.runVisible(
      {commandLine, workingFolder.empty() ? currentFolder_ : workingFolder, "", manner},
      [&](std::string_view bytes) {
        text += bytes;
        if (run.counted) names.add(bytes);
        user_.consoleOutput(bytes);
      },
      [&] {
        if (run.counted) run.counted(names.done());
        user_.letEventsRun();
        return !stop.requested();
      });
  user_.consoleClosed();
  raw.text = std::move(text);
  return finished(std::move(raw));
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
