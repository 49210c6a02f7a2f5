#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"
#include "platform/RegularFile.h"
#include "platform/Replacement.h"
#include "platform/Stop.h"

namespace platform {

/// Existence, kinds and times of what a Windows path names, asked of the host. Queries follow links
/// (a link to a folder is a folder); a wrong type is not "a file". A path that names nothing is absent.
class Files {
 public:
  explicit Files(const DriveTable& drives) : drives_(drives) {}

  bool fileExists(std::string_view path) const;  ///< anything but a folder that can be reached
  bool folderExists(std::string_view path) const;
  bool entryExists(std::string_view path) const;    ///< a dangling link exists too (lstat)
  bool isSpecial(std::string_view path) const;      ///< neither a file with bytes of its own nor a folder
  bool isRegularFile(std::string_view path) const;  ///< follows links
  std::optional<std::uint64_t> fileSize(std::string_view path) const;  ///< bytes
  std::optional<std::time_t> modifiedTime(std::string_view path) const;
  bool isLink(std::string_view path) const;  ///< a symbolic one, wherever it leads
  std::string fullName(
      std::string_view path) const;  ///< name on disk exactly as found, or empty (a case-exact Dir())

  int readProblem(std::string_view folder) const;  ///< why it cannot be listed: the system's error, or 0

  /// One level. 0 when it is there afterwards, whoever made it; else the system's error.
  int createFolder(std::string_view path) const;
  /// The mode is that before the umask. 0, or the system's error; EEXIST: something stands there.
  int createFolderExclusively(std::string_view path, mode_t mode = S_IRWXU) const;
  int writeProblem(
      std::string_view folder) const;  ///< why no file can be made in it: the system's error, or 0
  bool deleteFile(std::string_view path) const;
  bool rename(std::string_view from, std::string_view to) const;  ///< replaces; same file system only
  /// Bytes and mode. 0, or the system's error, which leaves no half copy; ECANCELED: stopped.
  int copyFile(std::string_view from, std::string_view to, const Stop& stop = {}) const;
  /// Moves a file, also to another file system, with its mode and owner. 0, or the system's error; EEXIST:
  /// something that is spared stands there; ECANCELED: stopped, nothing was moved.
  int moveFile(std::string_view from, std::string_view to, Existing existing, const Stop& stop = {}) const;
  bool deleteTree(std::string_view path) const;  ///< without following links; also below read-only folders
  bool writeText(std::string_view path, std::string_view bytes) const;  ///< replaces
  std::optional<std::string> readBytes(std::string_view path, std::size_t most) const;
  RegularFile openFile(std::string_view path) const;  ///< for reading piece by piece; false when it cannot be

  /// Names inside a folder in held form, sorted by bytes, without "." and "..". Links are not followed for
  /// `isFolder` except to tell a link to a folder.
  struct Entry {
    std::string name;
    bool isFolder;
  };
  std::optional<std::vector<Entry>> entries(std::string_view folder) const;

  const DriveTable& drives() const { return drives_; }

 private:
  const DriveTable& drives_;
};

/// The text after the last "." of a name (of the part behind the last backslash), empty when there is none;
/// case kept.
std::string extensionOf(std::string_view name);

/// TMPDIR (or /tmp) in Windows form with a trailing backslash.
std::string temporaryFolder(const DriveTable& drives);

/// The long form of a path: the path itself where it names something, otherwise empty.
std::string longName(const Files& files, std::string_view path);

}  // namespace platform
