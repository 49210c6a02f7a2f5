#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The drives of the machine: letters that name host folders. The only place where a Windows path
/// becomes a host path and back, one to one.
class DriveTable {
 public:
  struct Drive {
    char letter;             ///< 'A' to 'Z'
    std::string hostFolder;  ///< absolute host path without a trailing '/', except "/" itself
  };

  /// A fixed table. A table that gives "/" no letter gets `Z:` for it (the last free letter where Z is
  /// taken).
  explicit DriveTable(std::vector<Drive> drives);

  /// The table of this run: `text` is the value of PAKRUNE_DRIVES ("C=/srv/a;D=/mnt/b"), or empty for
  /// C: = `home`, Z: = "/", and D: onward for the removable volumes mounted for the user (/media/USER,
  /// /run/media/USER).
  static DriveTable fromText(std::string_view text, std::string_view home);

  /// The host path of an absolute Windows path (`C:\pkg\a`, `c:/pkg/a`) or of a `/cygdrive/c/...` text.
  /// Both separators are read, "." components fold, ".." stays. nullopt for a `\\server\share` path,
  /// a letter that names no drive, and a relative path.
  std::optional<std::string> toHost(std::string_view windowsPath) const;

  /// Whether a path names a drive itself (`C:\`, `/cygdrive/c`), not something on it.
  bool isRoot(std::string_view windowsPath) const;

  /// The Windows path of an absolute host path: the longest matching drive names it. A root is `C:\`;
  /// nothing else ends in a backslash.
  std::string toWindows(std::string_view hostPath) const;

  const std::vector<Drive>& drives() const { return drives_; }  ///< sorted by letter
  /// Reads the removable volumes again; a letter stays with its folder for the run. No effect on a fixed
  /// table.
  void readAgain();

  /// Makes these folders the removable volumes of now; one that was seen before gets its old letter.
  void showVolumes(const std::vector<std::string>& folders);

 private:
  std::vector<Drive> drives_;
  std::vector<Drive> volumes_;  ///< all that were ever seen in this run
  bool fixed_ = true;
};

}  // namespace platform
