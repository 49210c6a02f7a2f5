#pragma once

#include <map>
#include <string>
#include <string_view>

namespace browser {

/// Where a control stands in its container, in twips (1440 an inch).
struct Rect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  bool operator==(const Rect&) const = default;
};

/// The main window's layout: a table of rectangles by control name, and the rules that change it. Frames and
/// the log pane are placed in the area directly below the menu bar. A rule that would make a width or a
/// height negative is skipped; what no rule names keeps its design position. The splitter stays inside its
/// frame: where that is too narrow for the place it was given, it comes back there once there is room.
class Layout {
 public:
  static constexpr int startWidth = 12000;  ///< of the main window, menu bar included
  static constexpr int startHeight = 9000;

  Layout();  ///< the starting size's layout, without the log

  /// The main window is `width` by `height` (menu bar included, the window manager's frame not).
  void resize(int width, int height, bool logShown);

  /// The pointer is at horizontal position `x` inside the splitter while it is dragged.
  void dragDivider(int x);

  /// Where the splitter's left edge was put, also while there is no room for it.
  int dividerPlace() const { return dividerPlace_; }
  void setDividerPlace(int left);
  static constexpr int leastDivider = 400;  ///< its left edge at the left end
  int mostDivider() const;                  ///< and at the right end

  const Rect& operator[](std::string_view name) const;  ///< a name that is not in the table: all 0
  const std::map<std::string, Rect, std::less<>>& rects() const { return rects_; }

 private:
  Rect& at(const char* name) { return rects_.find(name)->second; }
  void placeWindow(int width, int height, bool logShown);
  void placeBrowser();
  void placeDivider();
  void placeSelection();
  void placeArchive();
  void placeProgress();

  std::map<std::string, Rect, std::less<>> rects_;
  int dividerPlace_;
};

}  // namespace browser
