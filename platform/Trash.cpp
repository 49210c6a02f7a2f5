#include "platform/Trash.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/Descriptor.h"
#include "platform/Replacement.h"
#include "platform/TypedPath.h"

namespace platform {
namespace {

constexpr const char* noteEnd = ".trashinfo";
constexpr std::size_t longestName = 200;  // leaves room for a number and the end of the note's name

/// A folder with "files" and "info" in it, and what the places in its notes are counted from.
struct TrashFolder {
  std::string path;
  std::string top;  // empty: they are whole paths
};

struct Entry {
  std::string folder;  // free of links
  std::string name;
  std::string path() const { return (folder == "/" ? folder : folder + '/') + name; }
};

std::string reason(int systemError) { return std::generic_category().message(systemError); }

std::optional<struct stat> statusOf(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return std::nullopt;
  return status;
}

std::optional<Entry> entryAt(const std::string& hostPath) {
  const std::size_t slash = hostPath.find_last_of('/');
  std::array<char, PATH_MAX> folder{};
  if (realpath(hostPath.substr(0, slash + 1).c_str(), folder.data()) == nullptr) return std::nullopt;
  Entry entry{folder.data(), hostPath.substr(slash + 1)};
  if (!statusOf(entry.path())) return std::nullopt;
  return entry;
}

/// What somebody else put there, or a link, is no place for the user's files.
bool ownFolder(const std::string& path) {
  if (mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST) return false;
  const auto status = statusOf(path);
  errno = EACCES;
  return status && S_ISDIR(status->st_mode) && status->st_uid == geteuid();
}

std::string dataFolder() {
  const char* const named = std::getenv("XDG_DATA_HOME");
  return named != nullptr && *named == '/' ? named : homeFolder() + "/.local/share";
}

std::string topOf(std::string folder, dev_t device) {
  while (folder != "/") {
    const std::string above = folder.substr(0, std::max<std::size_t>(folder.find_last_of('/'), 1));
    const auto status = statusOf(above);
    if (!status || status->st_dev != device) break;
    folder = above;
  }
  return folder;
}

/// One that an administrator made for all is taken only if nobody can take another's files out of it.
std::optional<TrashFolder> trashAtTop(const std::string& top) {
  const std::string user = std::to_string(geteuid());
  const std::string root = top == "/" ? "" : top;
  const std::string shared = root + "/.Trash";
  const auto status = statusOf(shared);
  if (status && S_ISDIR(status->st_mode) && (status->st_mode & S_ISVTX) != 0 &&
      ownFolder(shared + '/' + user))
    return TrashFolder{shared + '/' + user, root + '/'};
  if (!ownFolder(shared + '-' + user)) return std::nullopt;
  return TrashFolder{shared + '-' + user, root + '/'};
}

/// nullopt: the system's error says why.
std::optional<TrashFolder> trashFor(const Entry& entry) {
  const auto place = statusOf(entry.folder);
  if (!place) return std::nullopt;
  const std::string data = dataFolder();
  std::error_code ignored;  // what is missing then is told by the next step
  std::filesystem::create_directories(data, ignored);
  struct stat home {};
  const bool besideHome = stat(data.c_str(), &home) != 0 || home.st_dev == place->st_dev;
  auto trash = besideHome ? std::optional(TrashFolder{data + "/Trash", {}})
                          : trashAtTop(topOf(entry.folder, place->st_dev));
  if (!trash || !ownFolder(trash->path)) return std::nullopt;
  for (const char* part : {"/files", "/info"})
    if (!ownFolder(trash->path + part)) return std::nullopt;
  return trash;
}

std::string encoded(std::string_view path) {
  constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~/";
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    text += plain.find(c) == plain.npos ? std::string{'%', digits[byte >> 4], digits[byte & 0xF]}
                                        : std::string(1, c);
  }
  return text;
}

std::string noteOf(const std::string& place) {
  const std::time_t now = std::time(nullptr);
  struct tm local {};
  std::array<char, 32> when{};
  localtime_r(&now, &local);
  std::strftime(when.data(), when.size(), "%Y-%m-%dT%H:%M:%S", &local);
  return "[Trash Info]\nPath=" + encoded(place) + "\nDeletionDate=" + when.data() + "\n";
}

/// The note claims the name, so that two programs never take the same one. 0, or the system's error.
int moveAs(const std::string& name, const Entry& entry, const TrashFolder& trash) {
  const std::string note = trash.path + "/info/" + name + noteEnd;
  Descriptor file(open(note.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!file) return errno;
  const std::string place = entry.path().substr(trash.top.size());
  const bool written = writeAll(file.get(), noteOf(place)) && file.closeNow();
  const int error = written ? moveUnlessTaken(entry.path(), trash.path + "/files/" + name) : errno;
  if (error != 0) unlink(note.c_str());
  return error;
}

int moveInto(const TrashFolder& trash, const Entry& entry) {
  const std::string base = entry.name.substr(0, longestName);
  int error = moveAs(base, entry, trash);
  for (int number = 2; error == EEXIST; ++number)
    error = moveAs(base + '.' + std::to_string(number), entry, trash);
  return error;
}

}  // namespace

std::string moveToTrash(const DriveTable& drives, std::string_view path) {
  const auto host = drives.toHost(path);
  if (!host) return "it names nothing here";
  const auto entry = entryAt(*host);
  if (!entry) return reason(errno);
  const auto trash = trashFor(*entry);
  if (!trash) return "there is no trash for it: " + reason(errno);
  const int error = moveInto(*trash, *entry);
  return error == 0 ? std::string() : reason(error);
}

}  // namespace platform
