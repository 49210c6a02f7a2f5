// chown and chgrp for the terminal's accounts: names become numbers, then the host's tool does the work.

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "tools/terminal_accounts.h"

namespace {

/// The etc folder beside the folder in which this program stands.
std::string etcFolder() {
  std::array<char, 4096> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  const std::string self(path.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
  const std::string bin = self.substr(0, self.rfind('/'));
  return bin.substr(0, bin.rfind('/')) + "/etc";
}

/// What the program was called as, without folder and ".exe".
std::string calledName(const char* word) {
  std::string name = word == nullptr ? "" : word;
  name.erase(0, name.rfind('/') + 1);
  if (name.ends_with(".exe")) name.erase(name.size() - 4);
  return name;
}

/// The first word that is no option: an owner for chown, a group for chgrp. 0 when there is none or
/// --reference stands in its place.
int ownerPosition(int count, char** words) {
  for (int i = 1; i < count; ++i) {
    const std::string word = words[i];
    if (word == "--") return i + 1 < count ? i + 1 : 0;
    if (word.starts_with("--reference")) return 0;
    if (word.size() < 2 || word[0] != '-') return i;
  }
  return 0;
}

}  // namespace

int main(int count, char** words) {
  const bool group = calledName(count > 0 ? words[0] : nullptr) == "chgrp";
  const char* const tool = group ? "/usr/bin/chgrp" : "/usr/bin/chown";
  const TerminalAccounts accounts(etcFolder());
  std::string owner;
  if (const int at = ownerPosition(count, words); at > 0) {
    owner = group ? accounts.groupInNumbers(words[at]) : accounts.ownerInNumbers(words[at]);
    words[at] = owner.data();
  }
  std::string name = group ? "chgrp" : "chown";  // the host's tool begins its messages with it
  if (count > 0) words[0] = name.data();
  execv(tool, words);
  std::fprintf(stderr, "%s: %s: %s\n", name.c_str(), tool, std::strerror(errno));
  return 127;
}
