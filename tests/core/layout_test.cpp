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
      {{0, 0, 3000, 0}, {"txtSelect", "txtLocation", "txtFileIn", "txtOutLocation"}},
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
    EXPECT_EQ(before["DirPane"].height, logShown ? 9000 - 2055 - 2445 : 9000 - 800 - 2445);
    const Layout after = sized(15000, 10000, logShown);
    for (const auto& [name, now] : after.rects()) {
      const Rect& was = before[name];
      const Rect change = {now.left - was.left, now.top - was.top, now.width - was.width,
                           now.height - was.height};
      EXPECT_EQ(change, changes[name]) << name;
    }
  }
}

/// At the starting size nothing overlaps what lies in the same container, and nothing leaves it.
TEST(Layout, DesignFitsTogether) {
  const Layout layout = sized(Layout::startWidth, Layout::startHeight);
  const std::map<const char*, std::vector<const char*>> containers = {
      {"frameMain",
       {"Label5", "Drive1", "optShowHidden", "optShowSystem", "txtLocation", "Label3", "lblSelectionText",
        "Frame1", "Dir1", "divider", "DirPane", "frameDirPaneButtons", "frameSelected", "frameAction"}},
      {"frameSelected", {"Label4", "txtSelect"}},
      {"frameAction", {"cmdSetPerms", "cmdDos2Unix", "cmdSetOwner", "cmdSetGroup", "frameTarButtons"}},
      {"frameUntar",
       {"Label1", "txtFileIn", "cmdGetFile", "cmdRefresh", "lblOutLocation", "txtOutLocation", "cmdSelectOut",
        "Label7", "tarTree", "frameTarSelector", "cmdBack", "frameUntarButtons"}}};
  for (const auto& [outer, names] : containers)
    for (const char* name : names) {
      const Rect& one = layout[name];
      EXPECT_TRUE(right(one) <= layout[outer].width && bottom(one) <= layout[outer].height) << name;
      for (const char* other : names)
        EXPECT_TRUE(name == other || right(one) <= layout[other].left || right(layout[other]) <= one.left ||
                    bottom(one) <= layout[other].top || bottom(layout[other]) <= one.top)
            << name << ' ' << other;
    }
  for (const char* name : {"Frame1", "frameDirPaneButtons", "txtLocation"})
    EXPECT_EQ(right(layout[name]), right(layout["DirPane"])) << name;
  EXPECT_EQ(layout["frameUntar"], layout["frameMain"]);
  EXPECT_EQ(layout["TreeView1"], layout["tarTree"]);
  EXPECT_LE(bottom(layout["frameMain"]), layout["lblHalvoren"].top);
  EXPECT_LE(bottom(layout["txtLog"]), layout["lblHalvoren"].top);
  EXPECT_LE(right(layout["lblHalvoren"]), layout["lblLast"].left);
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
  layout.resize(1000, 3000, false);  // the frame is possible, the location box is not
  EXPECT_EQ(layout["frameMain"].width, 920);
  EXPECT_EQ(layout["txtLocation"].width, before["txtLocation"].width);
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
  layout.resize(9000, 9000, false);
  EXPECT_EQ(layout["divider"].left, 8920 - 800);
  EXPECT_EQ(right(layout["DirPane"]), 8920 - 160);
  layout.resize(12000, 9000, false);
  EXPECT_EQ(layout["divider"].left, 11920 - 800);
}

}  // namespace
