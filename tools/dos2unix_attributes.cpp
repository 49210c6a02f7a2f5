#include "dos2unix_attributes.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace dos2unix {
namespace {

constexpr mode_t modeBits = 07777;

bool copyExtendedAttributes(int from, int to) {
  const ssize_t size = flistxattr(from, nullptr, 0);
  if (size <= 0) return size == 0 || errno == ENOTSUP;
  std::string names(static_cast<std::size_t>(size), '\0');
  if (flistxattr(from, names.data(), names.size()) != size) return false;
  for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
    const char* const name = names.c_str() + at;
    const ssize_t length = fgetxattr(from, name, nullptr, 0);
    std::string value(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
    if (length < 0 || fgetxattr(from, name, value.data(), value.size()) != length ||
        fsetxattr(to, name, value.data(), value.size(), 0) != 0)
      return false;
  }
  return true;
}

}  // namespace

/// Owner before mode: a change of owner takes the set-user-id bit.
bool copyAttributes(int from, int to, const struct stat& old) {
  struct stat made {};
  if (fstat(to, &made) != 0) return false;
  const bool foreign = made.st_uid != old.st_uid || made.st_gid != old.st_gid;
  return (!foreign || fchown(to, old.st_uid, old.st_gid) == 0) && copyExtendedAttributes(from, to) &&
         fchmod(to, old.st_mode & modeBits) == 0;
}

bool keepMode(int file, mode_t old) {
  struct stat now {};
  return fstat(file, &now) == 0 && (now.st_mode == old || fchmod(file, old & modeBits) == 0);
}

}  // namespace dos2unix
