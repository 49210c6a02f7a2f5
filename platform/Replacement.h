#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"

namespace platform {

/// Bytes read, 0 at the end, nullopt on an error.
std::optional<std::size_t> readSome(int file, char* buffer, std::size_t size);

/// False when not all bytes could be written.
bool writeAll(int file, std::string_view bytes);

/// What becomes of something that stands where a file is to go.
enum class Existing { Replaced, Spared };

/// The calls by which a file gets to its place; they differ by file system, and a test gives its own.
struct MoveCalls {
  int (*renameUnlessTaken)(const char* from, const char* to);
  int (*linkTo)(const char* from, const char* to);
};
extern const MoveCalls systemMoveCalls;

/// Moves within a file system and never replaces. 0, or the system's error; EEXIST: something stands there.
int moveUnlessTaken(const std::string& from, const std::string& to, const MoveCalls& calls = systemMoveCalls);

/// A new file beside its final place, so that a failure leaves what was there, and no half file.
class Replacement {
 public:
  /// Host path of the final place, and the mode before the umask. Without a file, errno says why; EINVAL:
  /// `target` is neither a regular file nor a link nor free. A link is replaced itself.
  Replacement(const std::string& target, mode_t mode);
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement();

  explicit operator bool() const { return static_cast<bool>(file_); }
  int get() const { return file_.get(); }
  /// What stands at the final place (lstat), if anything.
  const std::optional<struct stat>& replaced() const { return replaced_; }
  bool sync() { return fsync(file_.get()) == 0; }  ///< a power cut after commit then leaves old or new
  bool commit() { return commit(Existing::Replaced) == 0; }
  int commit(Existing existing);  ///< 0, or the system's error

 private:
  std::string target_;
  std::optional<struct stat> replaced_;
  std::string name_;
  Descriptor file_;
};

}  // namespace platform
