#include "runtime/PermissionMode.h"

#include "runtime/LsLine.h"

namespace runtime {
namespace {

int classValue(std::string_view line, LsClass whose) {
  const std::string_view triad = lsTriad(line, whose);
  const auto bit = [triad](char letter, int value) { return triad.find(letter) != triad.npos ? value : 0; };
  return bit('r', PermissionMode::read) + bit('w', PermissionMode::write) + bit('x', PermissionMode::execute);
}

}  // namespace

std::string PermissionMode::text() const {
  return std::to_string(owner) + std::to_string(group) + std::to_string(everyone);
}

PermissionMode PermissionMode::directoryVariant() const { return {owner | 1, group | 1, everyone | 1}; }

PermissionMode PermissionMode::fromModeField(std::string_view line) {
  return {classValue(line, LsClass::Owner), classValue(line, LsClass::Group),
          classValue(line, LsClass::Everyone)};
}

}  // namespace runtime
