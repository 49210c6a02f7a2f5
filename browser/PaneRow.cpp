#include "browser/PaneRow.h"

#include "runtime/ImageKeys.h"

namespace browser {

bool isFolderRow(const PaneRow& row) {
  static const int folderImage = runtime::getImageIndex("fldr");
  return row.image == folderImage;
}

std::string sizeText(const PaneRow& row) {
  constexpr std::int64_t kilobyte = 1000;
  if (!row.isFile) return {};
  const std::int64_t whole = row.size < kilobyte ? (row.size == 0 ? 0 : 1) : row.size / kilobyte;
  return std::to_string(whole) + " KB ";
}

}  // namespace browser
