#pragma once

#include <string>
#include <vector>

#include "archive/PackCommand.h"
#include "platform/System.h"
#include "runtime/CygwinEnvironment.h"
#include "runtime/UserInterface.h"
#include "runtime/modAPI.h"

namespace archive {

/// A folder that only this run uses (mode 0700), made under the first free name and removed with all that it
/// holds. Without a path when it could not be made.
class ScratchFolder {
 public:
  /// `base` ends in a backslash; the name is "_PK", the time as hhmmss and ".tmp", numbered when taken.
  ScratchFolder(const platform::Files& files, runtime::Log& log, const std::string& base);
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  explicit operator bool() const { return !path_.empty(); }
  const std::string& path() const { return path_; }  ///< no trailing backslash

 private:
  const platform::Files& files_;
  runtime::Log& log_;
  std::string path_;
};

/// Copies what a run with "../usr8" packs into a folder of its own, so that tar finds usr8 one level above
/// the other names.
class Staging {
 public:
  Staging(const platform::System& system, runtime::modAPI& api, const runtime::CygwinEnvironment& cygwin,
          runtime::Log& log);

  /// `insideUsr8`: the current folder is usr8 itself, so the names go below it. False after a failure, which
  /// the log then tells.
  bool copy(const NameList& list, bool insideUsr8);
  std::string tmpFolder() const { return scratch_.path() + "\\tmp"; }

 private:
  bool makeFolder(const std::string& path);
  bool copyNames(const std::vector<std::string>& names, const std::string& folder,
                 const std::string& workingFolder);
  bool runCopy(const std::string& listText, const std::string& folder, const std::string& workingFolder);
  bool copyBelowUsr8(const NameList& list);

  platform::System system_;
  runtime::modAPI& api_;
  const runtime::CygwinEnvironment& cygwin_;
  runtime::Log& log_;
  ScratchFolder scratch_;
};

}  // namespace archive
