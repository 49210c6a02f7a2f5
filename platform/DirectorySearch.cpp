#include "platform/DirectorySearch.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <charconv>
#include <span>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/BackgroundThread.h"
#include "platform/HeldName.h"

namespace platform {

struct DirectorySearch::State {
  std::string folder;  ///< host path
  std::unique_ptr<DIR, int (*)(DIR*)> listing;
  std::size_t atOnce = 1;  ///< entries: the first alone tells whether a folder can be read
  std::vector<FoundEntry> read{};
  std::size_t given = 0;  ///< of these
};

namespace {

constexpr std::size_t mostAtOnce = 16384;
constexpr std::size_t worthAThread = 1000;

/// The attributes that a file server noted as text ("0x22"); newer ones append a NUL and other data.
std::uint32_t notedAttributes(const std::string& host) {
  std::array<char, 256> value;
  const ssize_t size = getxattr(host.c_str(), "user.DOSATTRIB", value.data(), value.size());
  if (size < 3 || value[0] != '0' || (value[1] != 'x' && value[1] != 'X')) return 0;
  std::uint32_t bits = 0;
  std::from_chars(value.data() + 2, value.data() + size, bits, 16);
  return bits & (attributeHidden | attributeSystem | attributeArchive);
}

/// Adds what the system knows of an entry to the name and the kind that its folder gave.
void describe(int folder, const std::string& folderPath, FoundEntry& found) {
  const std::string name = std::exchange(found.name, holdName(found.name));
  const std::uint32_t kind = std::exchange(found.attributes, notedAttributes(folderPath + "/" + name));
  if (name.front() == '.') found.attributes |= attributeHidden;
  struct stat status {};
  if (fstatat(folder, name.c_str(), &status, 0) != 0 &&
      fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    // A folder that may be read but not entered still tells names and kinds.
    found.attributes |= kind;
    return;
  }
  if (S_ISDIR(status.st_mode)) found.attributes |= attributeDirectory;
  if ((status.st_mode & S_IWUSR) == 0) found.attributes |= attributeReadOnly;
  found.size = static_cast<std::uint64_t>(status.st_size);
  found.modifiedTime = status.st_mtime;
}

std::vector<FoundEntry> readNames(DIR* listing, std::size_t most) {
  std::vector<FoundEntry> names;
  while (names.size() < most) {
    const dirent* const entry = readdir(listing);
    if (entry == nullptr) break;
    FoundEntry& found = names.emplace_back();
    found.name = entry->d_name;
    if (entry->d_type == DT_DIR) found.attributes = attributeDirectory;
  }
  return names;
}

/// Two threads halve the wait: the system's answers are all that it is for.
void describeAll(int folder, const std::string& folderPath, std::span<FoundEntry> entries) {
  const auto describeThese = [folder, &folderPath](std::span<FoundEntry> some) {
    for (FoundEntry& entry : some) describe(folder, folderPath, entry);
  };
  if (entries.size() < worthAThread) return describeThese(entries);
  const std::size_t half = entries.size() / 2;
  std::thread other;
  try {
    other = threadWithoutSignals([&] { describeThese(entries.first(half)); });
  } catch (const std::system_error&) {
    return describeThese(entries);
  }
  describeThese(entries.subspan(half));
  other.join();
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
  if (state_->given == state_->read.size()) {
    state_->read = readNames(state_->listing.get(), std::exchange(state_->atOnce, mostAtOnce));
    state_->given = 0;
    describeAll(dirfd(state_->listing.get()), state_->folder, state_->read);
  }
  if (state_->read.empty()) return std::nullopt;
  return std::move(state_->read[state_->given++]);
}

}  // namespace platform
