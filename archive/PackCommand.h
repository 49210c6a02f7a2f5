#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/ArchiveKind.h"

namespace archive {

/// What the archive dialog's controls say when "Create Tar" is pressed.
struct PackSettings {
  std::string outputPath;                ///< Windows form
  bool append = false;                   ///< optAppend
  bool setOwner = true;                  ///< checkOwner
  bool setGroup = true;                  ///< checkGroup
  int ownerId = 500;                     ///< the entry at the list's top
  bool contentsOnly = true;              ///< checkContentsOnly (in force only with one folder selected)
  bool parentFolder = false;             ///< checkFolderContents (in force only with nothing selected)
  bool stageUsr8 = true;                 ///< the stored usr8 value
  int groupId = 1;                       ///< while setGroup
  bool newestTime = false;               ///< checkTime: every member carries the newest one's time
  std::optional<std::time_t> time = {};  ///< every member's instead of its own, seconds since 1970
  unsigned umask = 0;                    ///< bits that are taken out of every member's mode
};

/// What is to be packed.
struct PackSelection {
  std::string currentFolder;  ///< Windows form, no trailing backslash except a root
  std::vector<std::string>
      selectedPaths;  ///< full Windows paths; empty: nothing selected (or the whole folder was asked for)
  std::vector<std::string> paneItems;  ///< names of all that the file pane lists (nothing selected)
};

/// "usr8" as stored: missing, empty or exactly "1" is on, anything else off.
bool usr8Support(std::string_view stored);

/// The proposed output path: one folder -> path + ".tgz"; one file -> up to its own last "." + "tgz" (or path
/// + ".tgz" without one); otherwise current folder + "\" + its own name + ".tgz".
std::string proposedOutput(const PackSelection& selection, bool singleIsFolder);

/// A path from the save dialog: one whose own name has no "." gets ".tgz", ".tar" or ".tbz2", by the filter
/// (counted from 1: gzip, tar, bzip2) that was chosen.
std::string withArchiveExtension(const std::string& path, int filterIndex);

/// Names as tar is to get them and where it looks for them.
struct NameList {
  std::string workingFolder;
  std::vector<std::string> names;  ///< "/"-separated relative names, a leading "-" guarded by "./"
  bool usr8Found = false;
  bool nothingSelected = false;  ///< decides the order of the options in the command
};

/// Each name in double quotes and followed by one blank.
std::string quotedNames(const std::vector<std::string>& names);

/// "--owner=500 --group=1 ", a part of it, or empty.
std::string ownerOptions(const PackSettings& settings);

/// "--mtime=@1700000000 --mode=g-w,o-w ", a part of it, or empty.
std::string memberOptions(const PackSettings& settings);

/// The tar command. `stagingTmp` is the staging "\tmp" folder for a staged run, else empty.
/// `listText` is quotedNames(...) or the names-file options that stand for it.
std::string tarCommand(const PackSettings& settings, runtime::ArchiveKind kind, char mode,
                       const NameList& list, std::string_view listText, std::string_view stagingTmp,
                       std::string_view outputPath);

}  // namespace archive
