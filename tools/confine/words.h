#pragma once

#include <sys/types.h>

#include <optional>
#include <vector>

namespace confine {

/// What the launcher was told (platform/ConfinementWords.h); the texts are those of main().
struct Words {
  std::vector<const char*> folders;
  pid_t parent = 0;
  bool report = false;
  bool mounts = false;
  bool processes = false;
  bool landlock = false;
  bool calls = false;
  const char* program = nullptr;
  char** arguments = nullptr;  ///< argv[0] first, a null pointer last
};

/// nullopt: they are not the runner's.
std::optional<Words> readWords(int count, char** texts);

}  // namespace confine
