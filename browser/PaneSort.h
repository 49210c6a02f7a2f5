#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "browser/PaneRow.h"

namespace browser {

/// How the pane is sorted: by a column (1 name, 2 mode, 3 size, 4 time of change) in one direction.
struct PaneOrder {
  int sortColumn = 1;
  bool ascending = true;
};

/// The text by which a row is sorted. Folders come before files by name and by time (their keys begin with a
/// carriage return), and are the smallest by size. Times: yyyy/mm/dd, AM or PM, 12-hour clock, local time.
std::string sortKey(const PaneRow& row, int sortColumn);

/// The rows' indexes in the order wanted. Keys compare without regard to case, by code point; rows with equal
/// keys stand in listing order in both directions.
std::vector<std::size_t> sortedOrder(const std::vector<PaneRow>& rows, PaneOrder order);

}  // namespace browser
