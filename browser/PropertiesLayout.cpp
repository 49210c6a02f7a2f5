#include "browser/PropertiesLayout.h"

#include <algorithm>

namespace browser {
namespace {

constexpr int windowHeight = 2475;
constexpr int textHeight = 300;
constexpr int rowHeight = 360;
constexpr int left = 240;
constexpr int valueLeft = 1560;
constexpr int titleWidth = valueLeft - left - 60;
constexpr int besideText = 2000;  // what the window is wider than its widest text
constexpr int leastWidth = 4400;
constexpr int leastText = 2400;
constexpr int topOfFirstRow = 240;
constexpr Rect line = {left, 600, 0, 30};
constexpr int rightOfLine = 720;
constexpr Rect button = {0, 1860, 1215, 375};

int textRoom(const PropertiesWidths& widths, int mostWidth) {
  int widest = widths.lblSize;
  for (const auto& width : {widths.lblInfo, widths.lblLocation, widths.lblModified, widths.lblPermissions})
    widest = std::max(widest, width.value_or(0));
  return std::min(widest + besideText < leastWidth ? leastText : widest, mostWidth - besideText);
}

/// The top of the row below.
int placeInfo(PropertiesLayout& layout, int room) {
  layout.rects["lblInfo"] = {left, topOfFirstRow, room, textHeight};
  layout.rects["Line1"] = {line.left, line.top, separatorWidth(layout.width), line.height};
  return line.top + rowHeight;
}

void placeRows(PropertiesLayout& layout, const PropertiesWidths& widths, int room, int top) {
  const struct {
    const char* title;
    const char* value;
    bool shown;
  } rows[] = {{"lblLocationTitle", "lblLocation", widths.lblLocation.has_value()},
              {"lblSizeTitle", "lblSize", true},
              {"lblModifiedTitle", "lblModified", widths.lblModified.has_value()},
              {"lblPermissionsTitle", "lblPermissions", widths.lblPermissions.has_value()}};
  for (const auto& row : rows) {
    if (!row.shown) continue;
    layout.rects[row.title] = {left, top, titleWidth, textHeight};
    layout.rects[row.value] = {valueLeft, top, room, textHeight};
    top += rowHeight;
  }
}

}  // namespace

PropertiesLayout doLayout(const PropertiesWidths& widths, int mostWidth) {
  const int room = textRoom(widths, mostWidth);
  PropertiesLayout layout{room + besideText, windowHeight, {}};
  placeRows(layout, widths, room, widths.lblInfo ? placeInfo(layout, room) : topOfFirstRow);
  layout.rects["cmdOK"] = {(layout.width - button.width) / 2, button.top, button.width, button.height};
  return layout;
}

int separatorWidth(int windowWidth) { return windowWidth - rightOfLine - line.left; }

}  // namespace browser
