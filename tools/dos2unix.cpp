// dos2unix [--safe] [-U] [-q] [--] FILE...: turns CR LF into LF. A file that looks binary is left alone and
// said so. --safe and -U ask for what is done anyway; -q says nothing about a success.
//
// Each file is converted into a new one beside it; when all are written the system is told once to keep them,
// and only then they take the old ones' places. A file with several names, or with attributes (such as
// its owner) that no copy can be given, is written anew in its place, out of such a copy, which is removed
// last. So neither a crash nor a full disk costs more than the conversion.

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dos2unix_attributes.h"
#include "dos2unix_text.h"
#include "platform/Descriptor.h"

namespace {

using platform::Descriptor;

constexpr std::size_t blockSize = std::size_t{1} << 20;
constexpr const char* changedMeanwhile = "it was changed while it was being converted";
constexpr const char* endedMeanwhile = "the run was ended";

volatile std::sig_atomic_t ended = 0;
void noteEnd(int number) { ended = number; }

enum class Kind { Dos, Unix, Binary };

/// A converted copy that waits for its turn.
struct Waiting {
  std::string name;  ///< as it was given
  std::string path;  ///< what it stands for, links followed
  std::string copy;
  struct stat old;
  bool likeOld;  ///< the copy has all the attributes of the old file
};

std::string systemError() { return std::strerror(errno); }

std::optional<std::size_t> readBlock(int file, char* to) {
  ssize_t count = 0;
  do count = read(file, to, blockSize);
  while (count < 0 && errno == EINTR);
  return count < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(count));
}

bool writeAll(int file, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = write(file, bytes, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

/// In a process of its own: who waits for a slow disk hears no end signal, and is killed before he could
/// remove the copies.
bool synced(int file) {
  constexpr int pace = 2;  // milliseconds
  const pid_t child = fork();
  if (child == 0) _exit(syncfs(file) == 0 ? 0 : errno);
  if (child < 0) return false;
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (ended != 0) {
      kill(child, SIGKILL);
      return false;
    }
    poll(nullptr, 0, pace);
  }
  errno = WIFEXITED(status) ? WEXITSTATUS(status) : EINTR;
  return status == 0;
}

class Converter {
 public:
  explicit Converter(bool quiet) : quiet_(quiet) {}

  void take(const std::string& name);  ///< looks at a file, and converts it into a copy
  void finish();                       ///< puts all copies into their places
  bool good() const { return good_; }

 private:
  bool writeBlock(int to, std::size_t count, bool& carriedCr);
  static bool openCopy(Waiting& waiting, Descriptor& copy);
  std::optional<Kind> copyConverted(int file, Waiting& waiting);
  bool keep();
  void place(const Waiting& waiting);
  bool placeAnew(const Waiting& waiting);
  bool rewrite(const Waiting& waiting, Descriptor file);
  void drop(const Waiting& waiting, const std::string& why);
  void failed(const std::string& name, const std::string& why);

  bool quiet_;
  bool good_ = true;
  std::unique_ptr<char[]> block_ = std::make_unique<char[]>(blockSize + 1);
  std::vector<Waiting> waiting_;
  std::set<std::pair<dev_t, ino_t>> seen_;
};

void Converter::failed(const std::string& name, const std::string& why) {
  good_ = false;
  std::printf("dos2unix: %s: %s\n", dos2unix::shown(name).c_str(), why.c_str());
}

void Converter::drop(const Waiting& waiting, const std::string& why) {
  unlink(waiting.copy.c_str());
  failed(waiting.name, why);
}

/// `from` may begin with a CR that the block before ended in: whether it goes shows only now.
bool Converter::writeBlock(int to, std::size_t count, bool& carriedCr) {
  const bool carried = carriedCr;
  char* const begin = block_.get() + (carried ? 0 : 1);
  if (carried) *begin = '\r';
  const std::size_t size = dos2unix::convert(begin, count + (carried ? 1 : 0), carriedCr);
  return writeAll(to, begin, size);
}

bool Converter::openCopy(Waiting& waiting, Descriptor& copy) {
  waiting.copy = waiting.path.substr(0, waiting.path.rfind('/') + 1) + ".dos2unix-XXXXXX";
  copy = Descriptor(mkostemp(waiting.copy.data(), O_CLOEXEC));
  if (!copy) waiting.copy.clear();
  return static_cast<bool>(copy);
}

/// Reads once where the first block has a line end to convert, as most files do. nullopt: an error.
std::optional<Kind> Converter::copyConverted(int file, Waiting& waiting) {
  Descriptor copy;
  dos2unix::Scan found;
  bool carriedCr = false;
  for (bool first = true; ended == 0; first = false) {
    const auto count = readBlock(file, block_.get() + 1);
    if (!count) return std::nullopt;
    if (*count == 0) break;
    found.add({block_.get() + 1, *count});
    if (found.binary()) return Kind::Binary;
    if (!copy && found.hasDosLines()) {
      if (!openCopy(waiting, copy)) return std::nullopt;
      if (!first) {  // from the beginning, writing now
        if (lseek(file, 0, SEEK_SET) != 0) return std::nullopt;
        found = {};
        continue;
      }
    }
    if (copy && !writeBlock(copy.get(), *count, carriedCr)) return std::nullopt;
  }
  errno = EINTR;
  if (ended != 0) return std::nullopt;
  if (!copy) return Kind::Unix;
  if (carriedCr && !writeAll(copy.get(), "\r", 1)) return std::nullopt;
  waiting.likeOld = dos2unix::copyAttributes(file, copy.get(), waiting.old);
  return copy.closeNow() ? std::optional(Kind::Dos) : std::nullopt;
}

void Converter::take(const std::string& name) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(name.c_str(), nullptr), std::free);
  if (!real) return failed(name, systemError());
  Waiting waiting{name, real.get(), "", {}, true};
  const Descriptor file(open(real.get(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file || fstat(file.get(), &waiting.old) != 0) return failed(name, systemError());
  if (!S_ISREG(waiting.old.st_mode))
    return failed(name, S_ISDIR(waiting.old.st_mode) ? "it is a folder" : "it is no regular file");
  if (!seen_.emplace(waiting.old.st_dev, waiting.old.st_ino).second) return;  // under another name
  const std::optional<Kind> kind = copyConverted(file.get(), waiting);
  if (kind == Kind::Dos) {
    waiting_.push_back(std::move(waiting));
    return;
  }
  const std::string why = systemError();
  if (!waiting.copy.empty()) unlink(waiting.copy.c_str());
  if (!kind)
    failed(name, ended == 0 ? why : endedMeanwhile);
  else if (*kind == Kind::Binary)
    std::printf("dos2unix: skipping binary file %s\n", dos2unix::shown(name).c_str());
  else if (!quiet_)
    std::printf("dos2unix: %s has unix line ends already\n", dos2unix::shown(name).c_str());
}

/// One sync a file system, however many files.
bool Converter::keep() {
  std::set<dev_t> done;
  for (const Waiting& waiting : waiting_) {
    if (!done.insert(waiting.old.st_dev).second) continue;
    const Descriptor copy(open(waiting.copy.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!copy || !synced(copy.get())) return false;
  }
  return true;
}

/// The other names stay names of the same file. Should this fail half-way, the copy is whole, and stays.
bool Converter::rewrite(const Waiting& waiting, Descriptor file) {
  const Descriptor copy(open(waiting.copy.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  if (!copy) return false;
  off_t size = 0;
  while (true) {
    const auto count = readBlock(copy.get(), block_.get());
    if (!count || !writeAll(file.get(), block_.get(), *count)) return false;
    if (*count == 0) break;
    size += static_cast<off_t>(*count);
  }
  return ftruncate(file.get(), size) == 0 && dos2unix::keepMode(file.get(), waiting.old.st_mode) &&
         fsync(file.get()) == 0 && file.closeNow() && unlink(waiting.copy.c_str()) == 0;
}

/// False: the user has been told.
bool Converter::placeAnew(const Waiting& waiting) {
  Descriptor file(open(waiting.path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file)
    drop(waiting, systemError());
  else if (rewrite(waiting, std::move(file)))
    return true;
  else
    failed(waiting.name, systemError() + "; the whole converted file is " + dos2unix::shown(waiting.copy));
  return false;
}

void Converter::place(const Waiting& waiting) {
  struct stat now {};
  const struct stat& old = waiting.old;
  const bool same = lstat(waiting.path.c_str(), &now) == 0 && now.st_ino == old.st_ino &&
                    now.st_dev == old.st_dev && now.st_size == old.st_size &&
                    now.st_mtim.tv_sec == old.st_mtim.tv_sec && now.st_mtim.tv_nsec == old.st_mtim.tv_nsec;
  if (!same) return drop(waiting, changedMeanwhile);
  if (now.st_nlink > 1 || !waiting.likeOld) {
    if (!placeAnew(waiting)) return;
  } else if (rename(waiting.copy.c_str(), waiting.path.c_str()) != 0) {
    return drop(waiting, systemError());
  }
  if (!quiet_) std::printf("dos2unix: converted %s to unix format\n", dos2unix::shown(waiting.name).c_str());
}

void Converter::finish() {
  const bool kept = ended == 0 && keep();
  const std::string why = systemError();
  for (const Waiting& waiting : waiting_) {
    if (kept && ended == 0)
      place(waiting);
    else
      drop(waiting, ended == 0 ? why : endedMeanwhile);
  }
}

}  // namespace

int main(int count, char** words) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) std::signal(number, noteEnd);
  bool quiet = false;
  bool optionsEnded = false;
  std::vector<std::string> files;
  for (int i = 1; i < count; ++i) {
    const std::string word = words[i];
    if (optionsEnded || word.size() < 2 || word[0] != '-') {
      files.push_back(word);
    } else if (word == "--") {
      optionsEnded = true;
    } else if (word == "-q") {
      quiet = true;
    } else if (word != "--safe" && word != "-U") {
      std::printf("dos2unix: unknown option %s\n", dos2unix::shown(word).c_str());
      return 1;
    }
  }
  Converter converter(quiet);
  for (const std::string& file : files) {
    if (ended != 0) break;
    converter.take(file);
  }
  converter.finish();
  // The caller reads this as "nothing failed", so one bad file among good ones is not missed.
  const bool good = converter.good() && ended == 0;
  if (good && !quiet) std::printf("dos2unix: done.\n");
  const bool written = std::fflush(stdout) == 0;
  if (ended != 0) {
    std::signal(ended, SIG_DFL);
    std::raise(ended);
  }
  return good && written ? 0 : 1;
}
