#include "runtime/PermissionMode.h"

namespace runtime {
namespace {

constexpr std::size_t ownerAt = 1;  // the file's type stands first
constexpr std::size_t groupAt = 4;
constexpr std::size_t everyoneAt = 7;

int classValue(std::string_view line, std::size_t at) {
  const std::string_view triple = line.size() > at ? line.substr(at, 3) : std::string_view();
  const auto bit = [triple](char letter, int value) {
    return triple.find(letter) != triple.npos ? value : 0;
  };
  return bit('r', PermissionMode::read) + bit('w', PermissionMode::write) + bit('x', PermissionMode::execute);
}

}  // namespace

std::string PermissionMode::text() const {
  return std::to_string(owner) + std::to_string(group) + std::to_string(everyone);
}

PermissionMode PermissionMode::directoryVariant() const { return {owner | 1, group | 1, everyone | 1}; }

PermissionMode PermissionMode::fromModeField(std::string_view line) {
  return {classValue(line, ownerAt), classValue(line, groupAt), classValue(line, everyoneAt)};
}

}  // namespace runtime
