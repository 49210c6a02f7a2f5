// dos2unix FILE...: turns CR LF into LF in each file, which keeps its mode and owner. --safe and -U, which
// the program passes, ask for what is done anyway. -q says nothing about a success.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"

namespace {

using platform::Descriptor;

enum class Result { Converted, Binary, Failed };

bool readAll(int file, std::string& text) {
  std::vector<char> block(64 * 1024);
  while (true) {
    const ssize_t count = read(file, block.data(), block.size());
    if (count == 0) return true;
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
  }
}

bool writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(file, text.data(), text.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

/// A CR that stands alone, or before another CR, is not a line end and stays.
std::string withUnixLineEnds(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') out += text[i];
  }
  return out;
}

/// A new file beside the old one takes its place once it is whole. Where the owner cannot be kept, nothing is
/// changed.
bool replaceFile(const std::string& path, const struct stat& old, std::string_view text) {
  std::string name = path.substr(0, path.rfind('/') + 1) + ".dos2unix-XXXXXX";
  Descriptor file(mkostemp(name.data(), O_CLOEXEC));
  if (!file) return false;
  struct stat made {};
  bool good = writeAll(file.get(), text) && fstat(file.get(), &made) == 0;
  if (good && (made.st_uid != old.st_uid || made.st_gid != old.st_gid))
    good = fchown(file.get(), old.st_uid, old.st_gid) == 0;
  good = good && fchmod(file.get(), old.st_mode & 07777) == 0 && fsync(file.get()) == 0 && file.closeNow() &&
         rename(name.c_str(), path.c_str()) == 0;
  if (good) return true;
  const int error = errno;
  unlink(name.c_str());
  errno = error;
  return false;
}

/// A link's file is converted, and the link stays one.
std::string realName(const std::string& path) {
  char* const found = realpath(path.c_str(), nullptr);
  const std::string real = found == nullptr ? "" : found;
  std::free(found);
  return real;
}

Result convert(const std::string& path) {
  const std::string real = realName(path);
  if (real.empty()) return Result::Failed;
  const Descriptor file(open(real.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return Result::Failed;
  if (!S_ISREG(status.st_mode)) {
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return Result::Failed;
  }
  std::string text;
  if (!readAll(file.get(), text)) return Result::Failed;
  if (text.find('\0') != std::string::npos) return Result::Binary;
  const std::string converted = withUnixLineEnds(text);
  if (converted.size() == text.size()) return Result::Converted;
  return replaceFile(real, status, converted) ? Result::Converted : Result::Failed;
}

bool handle(const std::string& path, bool quiet) {
  switch (convert(path)) {
    case Result::Converted:
      if (!quiet) std::printf("dos2unix: converting file %s to unix format\n", path.c_str());
      return true;
    case Result::Binary:
      std::printf("dos2unix: skipping binary file %s\n", path.c_str());
      return true;
    case Result::Failed:
      std::printf("dos2unix: %s: %s\n", path.c_str(), std::strerror(errno));
      return false;
  }
  return false;
}

}  // namespace

int main(int count, char** words) {
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
      std::printf("dos2unix: unknown option %s\n", word.c_str());
      return 1;
    }
  }
  bool good = true;
  for (const std::string& file : files) good = handle(file, quiet) && good;
  // The program reads this as "nothing failed", so one bad file among good ones is not missed.
  if (good && !quiet) std::printf("dos2unix: done.\n");
  return good && std::fflush(stdout) == 0 ? 0 : 1;
}
