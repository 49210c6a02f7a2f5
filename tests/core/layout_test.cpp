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

TEST(Layout, RulesFollowTheWindow) {
  const Layout layout = sized(15000, 10000);
  const Rect& frame = layout["frameMain"];
  const Rect& pane = layout["DirPane"];
  EXPECT_EQ(frame.width, 14920);
  EXPECT_EQ(frame.height, 9200);
  EXPECT_EQ(layout["txtLog"].top, 7990);
  EXPECT_EQ(layout["txtLog"].width, 14655);
  EXPECT_EQ(right(layout["frameAction"]), 14660);
  EXPECT_EQ(layout["frameAction"].top, 8100);
  EXPECT_EQ(layout["frameTarButtons"].left, layout["frameAction"].width - 1780);
  EXPECT_EQ(pane.width, 14920 - layout["divider"].left - layout["divider"].width - 200);
  EXPECT_EQ(pane.height, 6755);
  EXPECT_EQ(layout["Dir1"].height, 6755);
  EXPECT_EQ(layout["divider"].height, 6755);
  EXPECT_EQ(right(layout["Frame1"]), right(pane));
  EXPECT_EQ(right(layout["frameDirPaneButtons"]), right(pane));
  EXPECT_EQ(layout["frameDirPaneButtons"].top, bottom(pane));
  EXPECT_EQ(layout["frameSelected"].top, bottom(pane));
  EXPECT_EQ(right(layout["frameSelected"]), layout["frameDirPaneButtons"].left - 20);
  EXPECT_EQ(right(layout["txtSelect"]), layout["frameSelected"].width - 20);
  EXPECT_EQ(layout["lblSelectionText"].left, pane.left);
}

TEST(Layout, ArchiveFrameLiesOverTheBrowser) {
  const Layout layout = sized(15000, 10000, true);
  const Rect& frame = layout["frameUntar"];
  const Rect& tree = layout["tarTree"];
  EXPECT_EQ(frame, layout["frameMain"]);
  EXPECT_EQ(frame.height, 7945);
  EXPECT_EQ(layout["frameUntarButtons"].left, (14920 - layout["frameUntarButtons"].width) / 2);
  EXPECT_EQ(layout["frameUntarButtons"].top, 7345);
  EXPECT_EQ(right(tree), 14680);
  EXPECT_EQ(tree.height, 5260);
  EXPECT_EQ(layout["TreeView1"], tree);
  EXPECT_EQ(layout["frameTarSelector"].top, bottom(tree));
  EXPECT_EQ(layout["txtFileIn"].width, 12280);
  EXPECT_EQ(layout["cmdGetFile"].left, right(layout["txtFileIn"]));
  EXPECT_EQ(layout["cmdSelectOut"].left, right(layout["txtOutLocation"]));
  EXPECT_EQ(layout["cmdRefresh"].left, layout["cmdGetFile"].left + 460);
  const Rect& label = layout["frameTarRefreshLabel"];
  const Rect& bar = layout["pbTarRefresh"];
  EXPECT_EQ(label.left, tree.left + (tree.width - label.width) / 2);
  EXPECT_EQ(label.top, tree.top + (tree.height - label.height) / 2 - 200);
  EXPECT_EQ(bar.left, tree.left + (tree.width - bar.width) / 2);
  EXPECT_EQ(bar.top, tree.top + (tree.height - bar.height) / 2 + 200);
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
  inOrder({"frameMain", "lblHalvoren"}, true);
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
