#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "browser/LsEntry.h"

namespace browser {

/// One row of the file pane. Its texts are made from it when they are shown.
struct PaneRow {
  std::string name;  ///< held form; with the folder in front, the row's identity
  LsEntry ls;        ///< empty until the mode pass reached it
  std::int64_t size = 0;
  std::optional<std::time_t> modified;
  int image = 0;          ///< image index (runtime/ImageKeys.h)
  std::size_t place = 0;  ///< its position in the listing, before any sorting
  bool isFile = false;
  bool hidden = false;
  bool system = false;

  bool operator==(const PaneRow&) const = default;
};

/// A row is treated as a folder (opened, sorted to the front) when it has the folder's picture.
bool isFolderRow(const PaneRow& row);

/// "0 KB ", "1 KB ", otherwise whole kilobytes of 1000 bytes; empty for a row that is no file.
std::string sizeText(const PaneRow& row);

}  // namespace browser
