#include "platform/NewestTime.h"

#include <fts.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

namespace platform {

std::optional<std::time_t> newestTime(const std::vector<std::string>& paths, const Stop& stop,
                                      const std::function<bool(const std::string& path)>& leaveOut) {
  std::vector<char*> roots;
  for (const std::string& path : paths) roots.push_back(const_cast<char*>(path.c_str()));
  roots.push_back(nullptr);
  const std::unique_ptr<FTS, int (*)(FTS*)> walk(fts_open(roots.data(), FTS_PHYSICAL | FTS_NOCHDIR, nullptr),
                                                 fts_close);
  std::optional<std::time_t> files, folders;
  while (const FTSENT* const entry = walk ? fts_read(walk.get()) : nullptr) {
    if (stop.requested()) return std::nullopt;
    if (entry->fts_info == FTS_DP || entry->fts_info == FTS_NS) continue;
    if (leaveOut(entry->fts_path)) {
      fts_set(walk.get(), const_cast<FTSENT*>(entry), FTS_SKIP);
      continue;
    }
    std::optional<std::time_t>& newest = S_ISDIR(entry->fts_statp->st_mode) ? folders : files;
    newest = std::max(newest.value_or(entry->fts_statp->st_mtime), entry->fts_statp->st_mtime);
  }
  return files ? files : folders;
}

}  // namespace platform
