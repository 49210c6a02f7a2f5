#include "tools/confine/landlock.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "platform/Descriptor.h"

namespace confine {
namespace {

using platform::Descriptor;

// What the headers of Debian 12 (Linux 6.1) do not have yet.
constexpr std::uint64_t truncateAccess = 1ULL << 14;  // since version 3
constexpr std::uint64_t signalScope = 1ULL << 1;      // since version 6
struct Ruleset {
  std::uint64_t files;
  std::uint64_t network;
  std::uint64_t scopes;
};
constexpr long movesVersion = 2;
constexpr long truncateVersion = 3;
constexpr long scopesVersion = 6;

constexpr std::uint64_t names = LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE |
                                LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR |
                                LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK |
                                LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
                                LANDLOCK_ACCESS_FS_MAKE_SYM | LANDLOCK_ACCESS_FS_REFER;

/// Negative where there is no such thing.
long landlockVersion() {
  return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
}

Descriptor makeRuleset(std::uint64_t files, std::uint64_t scopes) {
  const Ruleset ruleset{files, 0, scopes};  // an older system takes it as long as what it does not know is 0
  return Descriptor(static_cast<int>(syscall(SYS_landlock_create_ruleset, &ruleset, sizeof ruleset, 0)));
}

bool allow(const Descriptor& ruleset, const char* path, std::uint64_t folderRights,
           std::uint64_t fileRights) {
  const Descriptor place(open(path, O_PATH | O_CLOEXEC));
  struct stat status {};
  if (!place || fstat(place.get(), &status) != 0) return false;
  const landlock_path_beneath_attr rule{S_ISDIR(status.st_mode) ? folderRights : fileRights, place.get()};
  return syscall(SYS_landlock_add_rule, ruleset.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0;
}

}  // namespace

bool restrictFiles(const std::vector<std::string>& folders) {
  const long version = landlockVersion();
  if (version < movesVersion) {
    errno = ENOTSUP;
    return false;
  }
  const std::uint64_t contents =
      LANDLOCK_ACCESS_FS_WRITE_FILE | (version >= truncateVersion ? truncateAccess : 0);
  const Descriptor ruleset = makeRuleset(names | contents, version >= scopesVersion ? signalScope : 0);
  if (!ruleset) return false;
  for (const std::string& folder : folders)
    if (!allow(ruleset, folder.c_str(), names | contents, contents)) return false;
  for (const char* const device : {"/dev/null", "/dev/tty"})
    allow(ruleset, device, 0, contents);  // a system without one offers nothing to write to
  return syscall(SYS_landlock_restrict_self, ruleset.get(), 0) == 0;
}

}  // namespace confine
