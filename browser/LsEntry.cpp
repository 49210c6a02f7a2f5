#include "browser/LsEntry.h"

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/HeldName.h"

namespace browser {
namespace {

char typeLetter(mode_t mode) {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return '-';
    case S_IFDIR:
      return 'd';
    case S_IFLNK:
      return 'l';
    case S_IFCHR:
      return 'c';
    case S_IFBLK:
      return 'b';
    case S_IFIFO:
      return 'p';
    case S_IFSOCK:
      return 's';
    default:
      return '?';
  }
}

/// A bit that changes the letter of "x" stands in capitals where there is no x.
void mark(char& execute, bool special, char letter) {
  if (special) execute = execute == 'x' ? letter : static_cast<char>(letter - 'a' + 'A');
}

std::string modeText(mode_t mode) {
  std::string text(1, typeLetter(mode));
  for (unsigned bit = S_IRUSR, i = 0; i < 9; bit >>= 1U, ++i) text += (mode & bit) != 0 ? "rwx"[i % 3] : '-';
  mark(text[3], (mode & S_ISUID) != 0, 's');
  mark(text[6], (mode & S_ISGID) != 0, 's');
  mark(text[9], (mode & S_ISVTX) != 0, 't');
  return text;
}

std::string targetOf(const std::string& hostPath) {
  std::array<char, PATH_MAX> target;
  const ssize_t size = readlink(hostPath.c_str(), target.data(), target.size());
  return size < 0 ? std::string() : platform::holdName({target.data(), static_cast<std::size_t>(size)});
}

}  // namespace

std::optional<LsEntry> lsEntryOf(const std::string& hostPath) {
  struct stat status {};
  if (lstat(hostPath.c_str(), &status) != 0) return errno == ENOENT ? std::nullopt : std::optional(LsEntry());
  return LsEntry{modeText(status.st_mode), true, status.st_uid, status.st_gid,
                 S_ISLNK(status.st_mode) ? targetOf(hostPath) : std::string()};
}

}  // namespace browser
