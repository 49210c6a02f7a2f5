#include "platform/DirectorySearch.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <charconv>

#include "platform/HeldName.h"

namespace platform {

struct DirectorySearch::State {
  std::string folder;  ///< host path
  std::unique_ptr<DIR, int (*)(DIR*)> listing;
};

namespace {

/// The attributes that a file server noted as text ("0x22"); newer ones append a NUL and other data.
std::uint32_t notedAttributes(const std::string& host) {
  std::array<char, 256> value;
  const ssize_t size = getxattr(host.c_str(), "user.DOSATTRIB", value.data(), value.size());
  if (size < 3 || value[0] != '0' || (value[1] != 'x' && value[1] != 'X')) return 0;
  std::uint32_t bits = 0;
  std::from_chars(value.data() + 2, value.data() + size, bits, 16);
  return bits & (attributeHidden | attributeSystem | attributeArchive);
}

FoundEntry describe(int folder, const std::string& folderPath, const dirent& entry) {
  const std::string_view name = entry.d_name;
  FoundEntry found;
  found.name = holdName(name);
  found.attributes = notedAttributes(folderPath + "/" + entry.d_name);
  if (name.front() == '.') found.attributes |= attributeHidden;
  struct stat status {};
  if (fstatat(folder, entry.d_name, &status, 0) != 0 &&
      fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    // A folder that may be read but not entered still tells names and kinds.
    if (entry.d_type == DT_DIR) found.attributes |= attributeDirectory;
    return found;
  }
  if (S_ISDIR(status.st_mode)) found.attributes |= attributeDirectory;
  if ((status.st_mode & S_IWUSR) == 0) found.attributes |= attributeReadOnly;
  found.size = static_cast<std::uint64_t>(status.st_size);
  found.modifiedTime = status.st_mtime;
  return found;
}

/// One of these, of which the name may tell that it is hidden.
bool hasAttribute(const DriveTable& drives, std::string_view path, std::uint32_t attributes) {
  if (path.substr(path.rfind('\\') + 1).starts_with('.')) return true;
  const std::optional<std::string> host = drives.toHost(path);
  return host && (notedAttributes(*host) & attributes) != 0;
}

}  // namespace

bool isHiddenOrSystem(const DriveTable& drives, std::string_view path) {
  return hasAttribute(drives, path, attributeHidden | attributeSystem);
}

bool isHidden(const DriveTable& drives, std::string_view path) {
  return hasAttribute(drives, path, attributeHidden);
}

DirectorySearch::DirectorySearch(const DriveTable& drives, std::string_view pattern) {
  if (pattern.empty() || pattern.back() != '*') return;
  pattern.remove_suffix(1);
  std::optional<std::string> host = drives.toHost(pattern);
  if (!host) return;
  DIR* const listing = opendir(host->c_str());
  if (listing != nullptr) state_.reset(new State{std::move(*host), {listing, closedir}});
}

DirectorySearch::~DirectorySearch() = default;

std::optional<FoundEntry> DirectorySearch::next() {
  if (!state_) return std::nullopt;
  const dirent* const entry = readdir(state_->listing.get());
  if (entry == nullptr) return std::nullopt;
  return describe(dirfd(state_->listing.get()), state_->folder, *entry);
}

}  // namespace platform
