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

inline std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// While it lives, this process gets no more of something.
class Limit {
 public:
  Limit(__rlimit_resource what, rlim_t most) : what_(what) {
    getrlimit(what_, &old_);
    const rlimit few = {most, old_.rlim_max};
    EXPECT_EQ(setrlimit(what_, &few), 0);
  }
  ~Limit() { setrlimit(what_, &old_); }
  Limit(const Limit&) = delete;
  Limit& operator=(const Limit&) = delete;

 private:
  __rlimit_resource what_;
  rlimit old_{};
};

/// As on a full disk: while it lives, no file grows beyond its size.
class FullDisk {
 public:
  explicit FullDisk(rlim_t size) : limit_(RLIMIT_FSIZE, size) {}
  ~FullDisk() { signal(SIGXFSZ, handler_); }

 private:
  sighandler_t handler_ = signal(SIGXFSZ, SIG_IGN);
  Limit limit_;
};

}  // namespace tests
