#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/System.h"
#include "platform/ToolRunning.h"
#include "runtime/UserInterface.h"

namespace runtime {

/// RunCapture's result when the tool could not be started; callers compare the whole text.
constexpr const char* startFailure = "*ERROR*";

/// A Windows path as a quoted /cygdrive/ path; an empty path gives the empty text.
std::string ToCygwinPath(std::string_view path);

/// Pixels to twips (1440 an inch) at a resolution of `dotsPerInch`, halves to even; 0 when that is not
/// positive.
std::int32_t PixelsToTwips(std::int32_t pixels, double dotsPerInch);

/// The file-name helpers of the main window.
std::string GetFileName(std::string_view path);  ///< after the last backslash, or the whole text
std::string getFilePath(std::string_view path);  ///< up to and including the last backslash, or empty
std::string withTrailingBackslash(std::string_view path);
std::string withoutTrailingBackslash(std::string_view path);  ///< a root keeps its own

using platform::ToolRunning;

/// The program's wrappers around the operating system: starting tools and the current folder.
class modAPI {
 public:
  modAPI(platform::System system, UserInterface& user);

  /// Everything the tool wrote; `startFailure` when it could not be started; empty when no pipe could be made
  /// (a box said so). `toolFolder` becomes and stays the current folder. An empty working folder means the
  /// tool folder.
  std::string RunCapture(const std::string& toolFolder, const std::string& commandLine,
                         const std::string& workingFolder = {});

  /// A run in a visible console that is waited for: the exit code, 128 + n for a signal, -1 when not started
  /// or its console was closed. The tool's own lines stay readable through lastConsoleText().
  int RunAndWait(const std::string& commandLine, const std::string& workingFolder = {});
  const std::string& lastConsoleText() const { return lastConsoleText_; }

  /// True when the tool's file (and its folder) is there; nothing is started.
  bool ProbeTool(const std::string& toolPath) const;

  void SetCurDir(const std::string& folder);  ///< ignored when it is no folder
  const std::string& currentFolder() const { return currentFolder_; }
  std::string GetTempDir() const;  ///< long form, trailing backslash
  std::string GetLongPath(const std::string& path) const;

  void setOsVersion(std::string text) { osVersion_ = std::move(text); }  ///< decides how tools are started
  const std::string& osVersion() const { return osVersion_; }
  ToolRunning& toolRunning() { return toolRunning_; }

 private:
  platform::System system_;
  UserInterface& user_;
  std::string currentFolder_;
  std::string osVersion_;
  std::string lastConsoleText_;
  ToolRunning toolRunning_;
};

}  // namespace runtime
