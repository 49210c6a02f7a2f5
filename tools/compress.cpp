// gzip and bzip2 as tar looks them up in the tools folder: compressing goes to pigz or lbzip2, which use
// every core and whose output does not depend on how many there are; what gzip decompresses for tar is done
// here; everything else (and all of it, where those are not installed) goes to the plain tool, whose words
// about damaged archives are the ones that are parsed. The links NAME.fast and NAME.plain beside this program
// lead to the two.

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#ifdef PAKRUNE_ISAL
#include "tools/fast_gunzip.h"
#else
#include <optional>
namespace {
std::optional<int> fastGunzip(const std::string&) { return std::nullopt; }
}  // namespace
#endif

namespace {

std::string ownFolder() {
  std::array<char, 4096> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  const std::string self(path.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
  return self.substr(0, self.rfind('/') + 1);
}

bool isBzip2(const char* word) {
  const std::string_view called = word == nullptr ? "" : word;
  return called.substr(called.rfind('/') + 1) == "bzip2";
}

/// Only what tar asks for when it packs: no option at all, or a level.
bool compresses(const std::vector<char*>& words) {
  for (std::size_t i = 1; i + 1 < words.size(); ++i) {
    const std::string_view word = words[i];
    if (word.size() != 2 || word[0] != '-' || word[1] < '1' || word[1] > '9') return false;
  }
  return true;
}

/// Only what tar asks for when it reads.
bool decompresses(const std::vector<char*>& words) {
  return words.size() == 3 && std::string_view(words[1]) == "-d";
}

}  // namespace

int main(int count, char** words) {
  const bool bzip2 = isBzip2(count > 0 ? words[0] : nullptr);
  std::string name = bzip2 ? "bzip2" : "gzip";
  std::string fastName = bzip2 ? "lbzip2" : "pigz";
  std::string noTime = "-n";  // pigz and gzip: no name and no time in the header
  const std::string tool = ownFolder() + name;

  std::vector<char*> arguments(words, words + count);
  arguments.resize(static_cast<std::size_t>(count > 0 ? count : 1));
  arguments.push_back(nullptr);
  const bool packs = compresses(arguments);
  if (packs && !bzip2) arguments.insert(arguments.begin() + 1, noTime.data());
  if (packs) {
    arguments[0] = fastName.data();
    execv((tool + ".fast").c_str(), arguments.data());
  }
  if (decompresses(arguments) && !bzip2)
    if (const auto status = fastGunzip(tool + ".plain")) return *status;
  arguments[0] = name.data();
  execv((tool + ".plain").c_str(), arguments.data());
  std::fprintf(stderr, "%s: %s: %s\n", name.c_str(), (tool + ".plain").c_str(), std::strerror(errno));
  return 127;
}
