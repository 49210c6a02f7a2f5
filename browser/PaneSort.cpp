#include "browser/PaneSort.h"

#include <algorithm>
#include <numeric>

#include "browser/FoldCase.h"
#include "platform/HeldName.h"

namespace browser {
namespace {

constexpr const char* beforeAll = "\r";

std::string timeKey(const PaneRow& row) {
  if (!row.modified) return {};
  std::tm local{};
  localtime_r(&*row.modified, &local);
  char text[64];
  const int hour = (local.tm_hour + 11) % 12 + 1;
  const int length =
      snprintf(text, sizeof text, "%04d/%02d/%02d %s %02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
               local.tm_mday, local.tm_hour < 12 ? "AM" : "PM", hour, local.tm_min, local.tm_sec);
  return {text, static_cast<std::size_t>(length)};
}

std::string sizeKey(const PaneRow& row) {
  constexpr std::size_t width = 12;
  if (isFolderRow(row)) return "0";
  std::string text = sizeText(row);
  if (!text.empty()) text.pop_back();  // its trailing blank
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

}  // namespace

std::string sortKey(const PaneRow& row, int sortColumn) {
  const std::string front = isFolderRow(row) ? beforeAll : "";
  switch (sortColumn) {
    case 1:
      return front + platform::shownName(row.name);
    case 2:
      return beforeAll + row.ls.mode;
    case 3:
      return sizeKey(row);
    default:
      return front + timeKey(row);
  }
}

std::vector<std::size_t> sortedOrder(const std::vector<PaneRow>& rows, PaneOrder order) {
  std::vector<std::string> keys;
  keys.reserve(rows.size());
  for (const PaneRow& row : rows) keys.push_back(foldCase(sortKey(row, order.sortColumn)));
  std::vector<std::size_t> indexes(rows.size());
  std::iota(indexes.begin(), indexes.end(), std::size_t{0});
  std::sort(indexes.begin(), indexes.end(), [&](std::size_t a, std::size_t b) {
    const int difference = keys[a].compare(keys[b]);
    if (difference == 0) return rows[a].place < rows[b].place;
    return order.ascending ? difference < 0 : difference > 0;
  });
  return indexes;
}

}  // namespace browser
