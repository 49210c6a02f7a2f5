#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/System.h"
#include "runtime/ToolResult.h"
#include "runtime/UserInterface.h"

namespace runtime {

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

/// A run that may change what lies below some folders (Windows paths; none: it changes nothing).
platform::RunManner mayChange(std::vector<std::string> folders);
/// The same for one that sees or sets owners and groups besides the user's own.
platform::RunManner mayChangeForAll(std::vector<std::string> folders);

/// The program's wrappers around the operating system: starting tools and the current folder.
class modAPI {
 public:
  modAPI(platform::System system, UserInterface& user);

  /// Both kinds of run hold the gate, end when the job is asked to stop, and start nothing after that.

  /// A run whose output is wanted. When no pipe could be made its text is empty (a box said so). `toolFolder`
  /// becomes and stays the current folder. An empty working folder means the tool folder.
  ToolResult RunCapture(const std::string& toolFolder, const std::string& commandLine,
                        const std::string& workingFolder = {}, const platform::RunManner& manner = {});

  /// A run in a visible console that is waited for.
  ToolResult RunAndWait(const VisibleRun& run, const std::string& commandLine,
                        const std::string& workingFolder = {}, const platform::RunManner& manner = {});

  /// True when the tool's file (and its folder) is there; nothing is started.
  bool ProbeTool(const std::string& toolPath) const;

  void SetCurDir(const std::string& folder);  ///< ignored when it is no folder
  const std::string& currentFolder() const { return currentFolder_; }
  std::string GetTempDir() const;  ///< long form, trailing backslash
  std::string GetLongPath(const std::string& path) const;

  void setOsVersion(std::string text) { osVersion_ = std::move(text); }  ///< decides how tools are started
  const std::string& osVersion() const { return osVersion_; }

 private:
  ToolResult finished(platform::RunResult raw) const;

  platform::System system_;
  UserInterface& user_;
  std::string currentFolder_;
  std::string osVersion_;
};

}  // namespace runtime
