#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Descriptor.h"

namespace platform {

/// A regular file open for reading, from its start. What is no regular file does not open: it might wait for
/// ever.
class RegularFile {
 public:
  explicit RegularFile(const std::string& hostPath);  ///< where it does not open, errno says why
  explicit operator bool() const { return static_cast<bool>(file_); }

  mode_t mode() const { return status_.st_mode; }  ///< as it was opened
  uid_t owner() const { return status_.st_uid; }
  gid_t group() const { return status_.st_gid; }
  std::uint64_t size() const { return static_cast<std::uint64_t>(status_.st_size); }  ///< likewise, bytes
  /// Still of the size and the time of its last change that it was opened with. A new name is no change.
  bool unchanged() const;
  std::optional<std::size_t> read(char* to,
                                  std::size_t most);  ///< bytes read, 0 at the end; nullopt: an error
  /// The same from a place on, as many as there are; the next read() goes on where it was.
  std::optional<std::size_t> readAt(std::uint64_t place, char* to, std::size_t most) const;

 private:
  struct stat status_ {};
  Descriptor file_;
};

}  // namespace platform
