#include "archive/LeftOut.h"

#include <algorithm>

namespace archive {
namespace {

constexpr std::size_t mostReported = 20;

const char* reasonText(LeftOut reason) {
  switch (reason) {
    case LeftOut::OtherHome:
      return " Not extracted, it belongs to another home on the terminal: ";
    case LeftOut::Outside:
      return " Not extracted, its name leads out of the output folder: ";
    case LeftOut::BelowLink:
      return " Not extracted, it lies below a link: ";
    case LeftOut::HardLinkOut:
      return " Not extracted, it is a hard link to something outside the output folder: ";
    case LeftOut::Unlisted:
      return " Not extracted, the archive was listed without it: ";
  }
  return "";
}

}  // namespace

void logLeftOut(runtime::Log& log, const std::vector<RefusedMember>& refused) {
  std::size_t reported = 0;
  bool otherHome = false;
  for (const RefusedMember& one : refused) {
    const bool again = one.reason == LeftOut::OtherHome && otherHome;
    otherHome = otherHome || one.reason == LeftOut::OtherHome;
    if (again) continue;
    if (++reported > mostReported) break;
    log.append(reasonText(one.reason) + (one.reason == LeftOut::OtherHome ? one.exclude : one.member));
  }
  if (reported > mostReported)
    log.append(" Not extracted either: more members that lead out of the output folder");
}

void logAbsolute(runtime::Log& log, const std::vector<std::string>& members) {
  for (std::size_t i = 0; i < std::min(members.size(), mostReported); ++i)
    log.append(" Extracted below the output folder, its name is absolute: " + members[i]);
  if (members.size() > mostReported) log.append(" Extracted there as well: more members of absolute names");
}

}  // namespace archive
