#include "tools/terminal_accounts.h"

#include <algorithm>
#include <fstream>
#include <span>

namespace {

struct Account {
  const char* name;
  const char* number;
};
constexpr Account builtInUsers[] = {{"usr1", "500"}, {"usr2", "501"}, {"usr3", "502"},
                                    {"usr4", "503"}, {"usr5", "504"}, {"usr6", "505"},
                                    {"usr7", "506"}, {"usr8", "507"}, {"root", "0"}};
constexpr Account builtInGroups[] = {{"KT500", "1"}, {"users", "1"}, {"root", "0"}};

bool isNumber(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// passwd and group agree in their first three fields: name, password, number.
std::optional<std::string> numberInLine(std::string_view line, std::string_view name) {
  if (!line.starts_with(name) || line.substr(name.size(), 1) != ":") return std::nullopt;
  const std::size_t second = line.find(':', name.size() + 1);
  if (second == line.npos) return std::nullopt;
  const std::string_view number = line.substr(second + 1, line.find(':', second + 1) - second - 1);
  return isNumber(number) ? std::optional(std::string(number)) : std::nullopt;
}

std::optional<std::string> numberOf(const std::string& path, std::span<const Account> builtIn,
                                    std::string_view name) {
  if (name.empty() || isNumber(name)) return std::nullopt;
  std::ifstream file(path);
  if (file) {
    for (std::string line; std::getline(file, line);)
      if (auto number = numberInLine(line, name)) return number;
    return std::nullopt;
  }
  for (const Account& account : builtIn)
    if (name == account.name) return account.number;
  return std::nullopt;
}

}  // namespace

std::optional<std::string> TerminalAccounts::userNumber(std::string_view name) const {
  return numberOf(etc_ + "/passwd", builtInUsers, name);
}

std::optional<std::string> TerminalAccounts::groupNumber(std::string_view name) const {
  return numberOf(etc_ + "/group", builtInGroups, name);
}

std::string TerminalAccounts::groupInNumbers(std::string_view group) const {
  return groupNumber(group).value_or(std::string(group));
}

std::string TerminalAccounts::ownerInNumbers(std::string_view owner) const {
  const std::size_t colon = owner.find(':');
  const std::string_view user = owner.substr(0, colon);
  const std::string first = userNumber(user).value_or(std::string(user));
  return colon == owner.npos ? first : first + ':' + groupInNumbers(owner.substr(colon + 1));
}
