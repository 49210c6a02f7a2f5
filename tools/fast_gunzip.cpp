#include "tools/fast_gunzip.h"

#include <fcntl.h>
#include <isa-l/igzip_lib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/CompressorWords.h"

namespace {

using Bytes = std::span<std::uint8_t>;

bool writeAll(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (count < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

class Input {
 public:
  /// What comes next, unconsumed: at least `wanted` bytes, except at the end of the file.
  Bytes ahead(std::size_t wanted) {
    if (end_ - begin_ < wanted) refill(wanted);
    return Bytes(buffer_).subspan(begin_, end_ - begin_);
  }
  void consume(std::size_t count) { begin_ += count; }

 private:
  /// A file that cannot be read seems to end here; plain gzip then has the words for it.
  void refill(std::size_t wanted) {
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
              buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
    end_ -= begin_;
    begin_ = 0;
    while (end_ < wanted) {
      const ssize_t count = read(STDIN_FILENO, buffer_.data() + end_, buffer_.size() - end_);
      if (count <= 0) return;
      end_ += static_cast<std::size_t>(count);
    }
  }

  std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(1 << 18);
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

/// Keeps the newest part back: plain gzip refuses a damaged table of codes at once, the library only where it
/// meets a code that is not in it, and what is delivered cannot be taken back.
class Output {
 public:
  Bytes room() { return part(newest_).subspan(filled_); }
  /// False when nobody reads any more.
  bool add(std::size_t count) {
    filled_ += count;
    if (filled_ < partSize) return true;
    newest_ = 1 - newest_;
    filled_ = 0;
    return !std::exchange(olderWaits_, true) || deliver(part(newest_));
  }
  bool finish() {
    return (!olderWaits_ || deliver(part(1 - newest_))) && deliver(part(newest_).first(filled_));
  }
  std::size_t delivered() const { return delivered_; }
  /// Before it is finished: whether it is a tar without its two blocks of zeros.
  bool isTarWithoutEnd() {
    const Bytes newer = part(newest_).first(filled_);
    const Bytes older = olderWaits_ ? part(1 - newest_) : Bytes();
    if (!(delivered_ > 0 ? tarDelivered_ : beginsAsTar(olderWaits_ ? older : newer))) return false;
    const std::size_t begin = filled_ % blockSize;  // from the last byte on backwards, as is the end
    const std::size_t end = begin + 2 * blockSize;
    const auto isZero = [&](std::size_t at) {
      return (at < newer.size() ? newer[newer.size() - 1 - at]
                                : older[older.size() - 1 - (at - newer.size())]) == 0;
    };
    if (end > newer.size() + older.size()) return true;
    for (std::size_t at = begin; at < end; ++at)
      if (!isZero(at)) return true;
    return false;
  }

 private:
  static constexpr std::size_t blockSize = 512;
  static constexpr std::size_t partSize = 1 << 22;

  Bytes part(std::size_t number) {
    return Bytes(memory_.get(), 2 * partSize).subspan(number * partSize, partSize);
  }
  static bool beginsAsTar(Bytes start) {
    constexpr std::string_view magic = "ustar";
    constexpr std::size_t magicPlace = 257;
    return start.size() >= blockSize && std::equal(magic.begin(), magic.end(), start.begin() + magicPlace);
  }
  bool deliver(Bytes bytes) {
    if (delivered_ == 0) tarDelivered_ = beginsAsTar(bytes);
    delivered_ += bytes.size();
    return writeAll(bytes);
  }

  /// Not touched before it is needed: most archives are small.
  std::unique_ptr<std::uint8_t[]> memory_ = std::make_unique_for_overwrite<std::uint8_t[]>(2 * partSize);
  std::size_t newest_ = 0;
  std::size_t filled_ = 0;  ///< of the newest part
  bool olderWaits_ = false;
  std::size_t delivered_ = 0;
  bool tarDelivered_ = false;
};

/// The bytes of a member's header that holds at most a name (as gzip and pigz write it), 0 for any other.
std::size_t headerSize(Bytes start) {
  constexpr std::array<std::uint8_t, 3> deflated = {0x1f, 0x8b, 8};
  constexpr std::size_t fixedSize = 10;
  constexpr std::uint8_t hasName = 8;
  if (start.size() < fixedSize || !std::equal(deflated.begin(), deflated.end(), start.begin())) return 0;
  if (start[3] == 0) return fixedSize;
  if (start[3] != hasName) return 0;
  const auto end = std::find(start.begin() + fixedSize, start.end(), 0);
  return end == start.end() ? 0 : static_cast<std::size_t>(end - start.begin()) + 1;
}

class Gunzip {
 public:
  /// Whether all was sound and is delivered.
  bool run() {
    do {
      constexpr std::size_t longestHeader = 1 << 12;
      const std::size_t header = headerSize(input_.ahead(longestHeader));
      if (header == 0) return false;
      input_.consume(header);
      if (!inflateMember()) return false;
    } while (!input_.ahead(1).empty());
    if (output_.isTarWithoutEnd()) std::fprintf(stderr, "%s\n", platform::tarEndMissing.data());
    return output_.finish();
  }
  std::size_t delivered() const { return output_.delivered(); }

 private:
  /// With the sum and the size behind it.
  bool inflateMember() {
    isal_inflate_init(&state_);
    state_.crc_flag = ISAL_GZIP_NO_HDR_VER;
    bool waiting = false;  // for room, perhaps with no input left
    while (state_.block_state != ISAL_BLOCK_FINISH) {
      const Bytes in = input_.ahead(1);
      if (in.empty() && !waiting) return false;
      const Bytes room = output_.room();
      state_.next_in = in.data();
      state_.avail_in = static_cast<std::uint32_t>(in.size());
      state_.next_out = room.data();
      state_.avail_out = static_cast<std::uint32_t>(room.size());
      if (isal_inflate(&state_) != ISAL_DECOMP_OK) return false;
      waiting = state_.avail_out == 0;
      input_.consume(in.size() - state_.avail_in);
      if (!output_.add(room.size() - state_.avail_out)) return false;
    }
    return true;
  }

  Input input_;
  Output output_;
  inflate_state state_{};
};

/// The status of a child, or its end.
int statusOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFSIGNALED(status)) return WEXITSTATUS(status);
  signal(WTERMSIG(status), SIG_DFL);
  raise(WTERMSIG(status));
  return 128 + WTERMSIG(status);
}

/// Copies from a pipe what comes behind the first `dropped` bytes, for as long as somebody reads it.
void passOn(int from, std::size_t dropped) {
  std::vector<std::uint8_t> buffer(1 << 16);
  for (ssize_t count; (count = read(from, buffer.data(), buffer.size())) > 0;) {
    const Bytes bytes = Bytes(buffer).first(static_cast<std::size_t>(count));
    const std::size_t known = std::min(dropped, bytes.size());
    dropped -= known;
    if (!writeAll(bytes.subspan(known))) break;
  }
  close(from);
}

int failed(const char* what) {
  std::perror(what);
  return 1;
}

int restart(const std::string& plainGzip, std::size_t dropped) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return failed("gzip: pipe");
  const pid_t child = fork();
  if (child < 0) return failed("gzip: fork");
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    execl(plainGzip.c_str(), "gzip", "-d", nullptr);
    std::perror("gzip");
    _exit(127);
  }
  close(ends[1]);
  passOn(ends[0], dropped);
  return statusOf(child);
}

bool isKind(int descriptor, mode_t kind) {
  struct stat about {};
  return fstat(descriptor, &about) == 0 && (about.st_mode & S_IFMT) == kind;
}

}  // namespace

std::optional<int> fastGunzip(const std::string& plainGzip) {
  const off_t start = lseek(STDIN_FILENO, 0, SEEK_CUR);
  if (start < 0 || !isKind(STDIN_FILENO, S_IFREG) || !isKind(STDOUT_FILENO, S_IFIFO)) return std::nullopt;
  fcntl(STDOUT_FILENO, F_SETPIPE_SZ, 1 << 20);  // less is slower, no more
  Gunzip gunzip;
  if (gunzip.run()) return 0;
  lseek(STDIN_FILENO, start, SEEK_SET);
  if (gunzip.delivered() == 0) return std::nullopt;
  return restart(plainGzip, gunzip.delivered());
}
