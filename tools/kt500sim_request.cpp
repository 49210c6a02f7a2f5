#include "tools/kt500sim_request.h"

#include <algorithm>
#include <vector>

#include "tools/kt500sim_options.h"

namespace kt500sim {
namespace {

constexpr std::string_view command = "DLD:";
constexpr std::size_t fieldCount = 5;
constexpr std::size_t longestName = 255;

ReadRequest bad(const std::string& reason) { return {RequestState::Bad, {}, reason}; }

/// The fields that a NUL ends, and the rest behind the last of them.
struct Fields {
  std::vector<std::string_view> ended;
  std::string_view rest;
};

Fields split(std::string_view bytes) {
  Fields fields{{}, bytes};
  while (fields.ended.size() < fieldCount) {
    const std::size_t nul = fields.rest.find('\0');
    if (nul == bytes.npos) break;
    fields.ended.push_back(fields.rest.substr(0, nul));
    fields.rest.remove_prefix(nul + 1);
  }
  return fields;
}

bool isName(std::string_view name) {
  return !name.empty() && name.size() <= longestName && name != "." && name != ".." &&
         name.find('/') == name.npos;
}

bool isMode(std::string_view mode) {
  return mode.size() == 3 &&
         std::all_of(mode.begin(), mode.end(), [](char c) { return c >= '0' && c <= '7'; });
}

/// The terminal has other accounts, but files are sent to these only.
bool isAccount(std::string_view owner) {
  return owner.size() == 4 && owner.starts_with("usr") && owner[3] >= '1' && owner[3] <= '8';
}

ReadRequest readFields(const std::vector<std::string_view>& fields, const TerminalAccounts& accounts) {
  const std::string_view name = fields[0].substr(command.size());
  const auto size = readNumber(fields[1]);
  if (!isName(name)) return bad("not a file name");
  if (!size) return bad("not a size");
  if (!isMode(fields[2])) return bad("not a mode");
  if (!isAccount(fields[3]) || !accounts.userNumber(fields[3])) return bad("not an account");
  if (fields[4] != "users" || !accounts.groupNumber(fields[4])) return bad("not a group");
  const auto mode = static_cast<mode_t>(std::stoul(std::string(fields[2]), nullptr, 8));
  return {RequestState::Complete,
          {std::string(name), *size, mode, std::string(fields[3]), std::string(fields[4])},
          ""};
}

}  // namespace

ReadRequest readRequest(std::string_view bytes, const TerminalAccounts& accounts) {
  if (bytes.substr(0, command.size()) != command.substr(0, bytes.size())) return bad("not a DLD request");
  if (bytes.size() > longestRequest) return bad("too long");
  const Fields fields = split(bytes);
  if (fields.ended.size() < fieldCount) return {};
  if (!fields.rest.empty()) return bad("more than a request");
  return readFields(fields.ended, accounts);
}

}  // namespace kt500sim
