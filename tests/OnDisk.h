#pragma once

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>

#include "platform/HeldName.h"
#include "tests/OrdinaryUser.h"
#include "tests/World.h"

namespace tests {

/// Of the entry itself, not of what a link leads to; all zero where there is none.
inline struct stat statusOf(const std::string& path) {
  struct stat status {};
  lstat(path.c_str(), &status);
  return status;
}
inline mode_t modeOf(const std::string& path) { return statusOf(path).st_mode & 07777; }

inline std::string bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Both hold for whoever is not root, who can give nothing away.
inline bool giveTo(const std::string& path, uid_t user, gid_t group) {
  return geteuid() != 0 || lchown(path.c_str(), user, group) == 0;
}
inline bool belongsTo(const std::string& path, uid_t user, gid_t group) {
  const struct stat status = statusOf(path);
  return geteuid() != 0 || (status.st_uid == user && status.st_gid == group);
}

/// As on a full disk: while it lives, no file grows beyond its size.
class FullDisk {
 public:
  explicit FullDisk(rlim_t size) : handler_(signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit small = {size, old_.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &old_);
    signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  sighandler_t handler_;
  rlimit old_{};
};

}  // namespace tests
