#include "browser/RowDetails.h"

#include "platform/HeldName.h"
#include "runtime/IsExecutable.h"

namespace browser {
namespace {

constexpr const char* executeLetters = "xst";

bool is(const PaneRow& row, char type) { return row.ls.mode.starts_with(type); }

bool isLsMode(const PaneRow& row) { return row.ls.owned; }

}  // namespace

bool isLinkRow(const PaneRow& row) { return isLsMode(row) && is(row, 'l'); }

bool isExecutableRow(const PaneRow& row) {
  if (!row.isFile) return false;
  const bool byMode =
      isLsMode(row) && is(row, '-') && row.ls.mode.find_first_of(executeLetters, 1) != row.ls.mode.npos;
  return byMode || runtime::IsExecutableName(row.name);
}

std::string rowDetails(const PaneRow& row) {
  std::string details;
  const auto add = [&details](const std::string& line) { details += (details.empty() ? "" : "\n") + line; };
  if (row.isFile) add("Size: " + std::to_string(row.size) + " bytes");
  if (row.ls.owned)
    add("Owner: " + std::to_string(row.ls.owner) + ", group: " + std::to_string(row.ls.group));
  if (!row.ls.target.empty()) add("Link to: " + platform::shownName(row.ls.target));
  if (isExecutableRow(row)) add("Executable");
  if (row.hidden) add("Hidden");
  if (row.system) add("System");
  return details;
}

}  // namespace browser
