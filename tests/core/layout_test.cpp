#include "browser/Layout.h"

#include <gtest/gtest.h>

namespace {

using browser::Layout;
using browser::Rect;

int right(const Rect& rect) { return rect.left + rect.width; }
int bottom(const Rect& rect) { return rect.top + rect.height; }

Layout sized(int width, int height, bool logShown = false) {
  Layout layout;
  layout.resize(width, height, logShown);
  return layout;
}

/// By how much each control moves and grows when the window grows by 3000 and 1000.
TEST(Layout, EveryControlFollowsTheWindow) {
  const std::pair<Rect, std::vector<const char*>> rules[] = {
      {{0, 0, 3000, 1000}, {"frameMain", "frameUntar", "DirPane", "tarTree", "TreeView1"}},
      {{0, 0, 3000, 0}, {"txtSelect", "txtFileIn", "txtOutLocation"}},
      {{0, 0, 0, 1000}, {"Dir1", "divider"}},
      {{0, 1000, 3000, 0}, {"txtLog", "frameSelected", "frameAction", "lblLast"}},
      {{0, 1000, 0, 0}, {"lblHalvoren", "frameTarSelector", "cmdBack"}},
      {{3000, 0, 0, 0}, {"Frame1", "frameTarButtons", "cmdGetFile", "cmdSelectOut", "cmdRefresh"}},
      {{3000, 1000, 0, 0}, {"frameDirPaneButtons"}},
      {{1500, 1000, 0, 0}, {"frameUntarButtons"}},
      {{1500, 500, 0, 0}, {"frameTarRefreshLabel", "pbTarRefresh"}}};
  std::map<std::string, Rect> changes;
  for (const auto& [rule, names] : rules)
    for (const char* name : names) changes[name] = rule;
  for (const bool logShown : {false, true}) {
    const Layout before = sized(12000, 9000, logShown);
    const Layout after = sized(15000, 10000, logShown);
    for (const auto& [name, now] : after.rects()) {
      const Rect& was = before[name];
      const Rect change = {now.left - was.left, now.top - was.top, now.width - was.width,
                           now.height - was.height};
      EXPECT_EQ(change, changes[name]) << name;
    }
  }
}

TEST(Layout, HidingTheLogGivesItsRoomToThePane) {
  const Layout shown = sized(12000, 9000, true);
  const Layout hidden = sized(12000, 9000, false);
  for (const char* name : {"frameMain", "frameUntar", "DirPane", "tarTree"})
    EXPECT_EQ(hidden[name].height - shown[name].height, 1255) << name;
}

/// What is above or beside another control at the starting size does not overlap it.
TEST(Layout, DesignFitsTogether) {
  const Layout layout = sized(Layout::startWidth, Layout::startHeight);
  const auto inOrder = [&layout](std::initializer_list<const char*> names, bool down) {
    for (const auto* name = names.begin(); name + 1 != names.end(); ++name) {
      const Rect& first = layout[*name];
      const Rect& second = layout[*(name + 1)];
      EXPECT_LE(down ? bottom(first) : right(first), down ? second.top : second.left) << *name;
    }
  };
  const auto edges = [&layout](std::initializer_list<const char*> names, int (*edge)(const Rect&)) {
    for (const char* name : names) EXPECT_EQ(edge(layout[name]), edge(layout[*names.begin()])) << name;
  };
  edges({"DirPane", "Frame1", "frameDirPaneButtons"}, right);
  edges({"DirPane", "Dir1", "divider"}, bottom);
  edges({"tarTree", "cmdRefresh"}, right);
  using Names = std::pair<const char*, const char*>;
  for (const auto& [inner, outer] :
       {Names{"frameTarButtons", "frameAction"}, Names{"txtSelect", "frameSelected"},
        Names{"frameAction", "frameMain"}, Names{"DirPane", "frameMain"}, Names{"cmdRefresh", "frameUntar"},
        Names{"frameUntarButtons", "frameUntar"}})
    EXPECT_TRUE(right(layout[inner]) <= layout[outer].width && bottom(layout[inner]) <= layout[outer].height)
        << inner;
  EXPECT_EQ(layout["frameUntar"], layout["frameMain"]);
  EXPECT_EQ(layout["TreeView1"], layout["tarTree"]);
  inOrder({"Drive1", "Label3", "Dir1", "frameSelected", "frameAction"}, true);
  inOrder({"txtLocation", "Frame1", "DirPane", "frameDirPaneButtons", "frameAction"}, true);
  inOrder({"Label5", "Drive1", "optShowHidden", "optShowSystem", "txtLocation"}, false);
  inOrder({"Dir1", "divider", "DirPane"}, false);
  inOrder({"lblSelectionText", "Frame1"}, false);
  inOrder({"cmdSetPerms", "cmdSetOwner", "frameTarButtons"}, false);
  inOrder(
      {"Label1", "txtFileIn", "lblOutLocation", "txtOutLocation", "Label7", "tarTree", "frameTarSelector"},
      true);
  inOrder({"txtFileIn", "cmdGetFile", "cmdRefresh"}, false);
  inOrder({"frameTarSelector", "cmdBack"}, false);
  inOrder({"tarTree", "cmdBack", "frameUntarButtons"}, true);
  inOrder({"frameMain", "lblHalvoren"}, true);
  inOrder({"lblHalvoren", "lblLast"}, false);
  edges({"lblLast", "txtLog"}, right);
  EXPECT_LE(bottom(layout["txtLog"]), layout["lblHalvoren"].top);
}

TEST(Layout, ImpossibleSizesAreSkippedOneByOne) {
  const Layout before = sized(12000, 9000);
  Layout layout = before;
  layout.resize(50, 30, false);
  for (const auto& [name, rect] : layout.rects()) {
    EXPECT_GE(rect.width, 0) << name;
    EXPECT_GE(rect.height, 0) << name;
  }
  EXPECT_EQ(layout["frameMain"], before["frameMain"]);
  EXPECT_EQ(layout["txtLog"].top, 30 - 2010);
  EXPECT_EQ(layout["txtLog"].width, before["txtLog"].width);
  layout.resize(2900, 3000, false);  // the frame is possible, the pane's width is not
  EXPECT_EQ(layout["frameMain"].width, 2820);
  EXPECT_EQ(layout["DirPane"].width, before["DirPane"].width);
  EXPECT_EQ(layout["Dir1"].height, layout["DirPane"].height);
  layout.resize(12000, 9000, false);
  EXPECT_EQ(layout.rects(), before.rects());
}

TEST(Layout, SplitterStopsAtBothEnds) {
  Layout layout = sized(12000, 9000);
  const int edge = right(layout["DirPane"]);
  const Rect bar = layout["divider"];
  layout.dragDivider(bar.width / 2 + 500);
  EXPECT_EQ(layout["divider"].left, bar.left + 500);
  EXPECT_EQ(right(layout["Dir1"]), bar.left + 500);
  EXPECT_EQ(layout["DirPane"].left, bar.left + 500 + bar.width + 40);
  EXPECT_EQ(right(layout["DirPane"]), edge);
  EXPECT_EQ(layout["lblSelectionText"].left, layout["DirPane"].left);
  layout.dragDivider(-20000);
  EXPECT_EQ(layout["divider"].left, 400);
  layout.dragDivider(20000);
  EXPECT_EQ(layout["divider"].left, 11920 - 800);
  EXPECT_EQ(layout["DirPane"].width, 800 - bar.width - 200);
  layout.resize(9000, 9000, false);  // the bar is outside now; moving it back is free
  layout.dragDivider(-1000);
  EXPECT_EQ(layout["divider"].left, 11120 - 1000 - bar.width / 2);
}

}  // namespace
