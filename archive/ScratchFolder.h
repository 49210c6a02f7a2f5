#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"
#include "platform/LockFile.h"
#include "platform/Stop.h"
#include "runtime/UserInterface.h"

namespace archive {

/// A folder that only this run uses (mode 0700), removed with all that it holds. A lock file inside tells
/// others that it is in use; one that an ended run left behind is removed by the next run beside it.
class ScratchFolder {
 public:
  /// `base` ends in a backslash; the name is "_PK", the time as hhmmss and ".tmp", numbered when taken.
  ScratchFolder(const platform::Files& files, runtime::Log& log, const std::string& base);
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  static constexpr const char* lockName = ".pakrune-lock";

  explicit operator bool() const { return !path_.empty(); }
  const std::string& path() const { return path_; }  ///< no trailing backslash; empty: it could not be made
  int systemError() const { return systemError_; }   ///< why it could not be made

 private:
  bool make(const std::string& path);

  const platform::Files& files_;
  runtime::Log& log_;
  std::string path_;
  int systemError_ = 0;
  platform::LockFile lock_;
};

/// Whether a path is such a folder, in use or left behind: its name, the lock file inside and the same user.
bool isScratchFolder(const platform::Files& files, const std::string& path);
bool isScratchOnHost(const std::string& hostPath);

/// Those below a folder, at whatever depth. What was found before a stop is all that is told.
std::vector<std::string> scratchFoldersBelow(const platform::Files& files, const std::string& folder,
                                             const platform::Stop& stop);

}  // namespace archive
