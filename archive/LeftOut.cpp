#include "archive/LeftOut.h"

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

}  // namespace archive
