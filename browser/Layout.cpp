#include "browser/Layout.h"

#include <algorithm>
#include <initializer_list>

namespace browser {
namespace {

/// Left, top, width, height. 15 twips are a pixel at 96 dots an inch.
const std::map<std::string, Rect, std::less<>>& design() {
  static const std::map<std::string, Rect, std::less<>> table = {
      // the area below the menu bar
      {"frameMain", {60, 0, 11920, 8200}},
      {"frameUntar", {60, 0, 11920, 8200}},
      {"txtLog", {165, 6990, 11655, 1200}},
      {"lblHalvoren", {165, 8240, 2400, 300}},
      {"lblLast", {2640, 8240, 9180, 300}},
      // frameMain
      {"Label5", {105, 75, 600, 330}},
      {"Drive1", {720, 60, 1380, 375}},
      {"optShowHidden", {2220, 75, 1530, 330}},
      {"optShowSystem", {3780, 75, 1560, 330}},
      {"txtLocation", {5385, 60, 6375, 375}},
      {"Label3", {105, 510, 2535, 330}},
      {"lblSelectionText", {2740, 510, 900, 330}},
      {"Frame1", {9500, 480, 2160, 360}},
      {"Dir1", {105, 870, 2535, 5755}},
      {"File1", {105, 870, 2535, 5755}},
      {"divider", {2640, 870, 60, 5755}},
      {"DirPane", {2740, 870, 9020, 5755}},
      {"frameDirPaneButtons", {9300, 6625, 2460, 435}},
      {"frameSelected", {105, 6625, 9175, 435}},
      {"frameAction", {105, 7100, 11555, 1095}},
      // frameSelected
      {"Label4", {0, 60, 840, 345}},
      {"txtSelect", {900, 45, 8255, 375}},
      // frameAction
      {"cmdSetPerms", {120, 285, 1620, 375}},
      {"cmdDos2Unix", {120, 675, 1620, 375}},
      {"cmdSetOwner", {1800, 285, 1380, 375}},
      {"cmdSetGroup", {1800, 675, 1380, 375}},
      {"frameTarButtons", {9775, 285, 1680, 765}},
      // frameUntar
      {"Label1", {240, 315, 4800, 225}},
      {"txtFileIn", {240, 555, 9280, 330}},
      {"cmdGetFile", {9520, 555, 420, 330}},
      {"cmdRefresh", {9980, 555, 1700, 330}},
      {"lblOutLocation", {240, 915, 4800, 225}},
      {"txtOutLocation", {240, 1155, 9280, 330}},
      {"cmdSelectOut", {9520, 1155, 420, 330}},
      {"Label7", {240, 1515, 4800, 225}},
      {"tarTree", {240, 1755, 11440, 5515}},
      {"TreeView1", {240, 1755, 11440, 5515}},
      {"frameTarSelector", {240, 7270, 2700, 330}},
      {"cmdBack", {3030, 7270, 1275, 330}},
      {"frameUntarButtons", {3460, 7600, 5000, 480}},
      {"frameTarRefreshLabel", {3860, 4000, 4200, 390}},
      {"pbTarRefresh", {3860, 4400, 4200, 330}},
  };
  return table;
}

void setExtent(int& extent, int value) {
  if (value >= 0) extent = value;
}

}  // namespace

Layout::Layout() : rects_(design()), dividerPlace_(at("divider").left) {
  resize(startWidth, startHeight, false);
}

const Rect& Layout::operator[](std::string_view name) const {
  static const Rect nowhere;
  const auto found = rects_.find(name);
  return found == rects_.end() ? nowhere : found->second;
}

void Layout::resize(int width, int height, bool logShown) {
  placeWindow(width, height, logShown);
  placeBrowser();
  placeSelection();
  placeArchive();
  placeProgress();
}

void Layout::placeWindow(int width, int height, bool logShown) {
  Rect& log = at("txtLog");
  log.top = height - 2010;
  setExtent(log.width, width - 345);
  for (const char* name : {"frameMain", "frameUntar"}) {
    setExtent(at(name).width, width - 80);
    setExtent(at(name).height, height - (logShown ? 2055 : 800));
  }
  // the band that the frames leave at the bottom
  for (const char* name : {"lblHalvoren", "lblLast"}) at(name).top = height - 760;
  Rect& last = at("lblLast");
  setExtent(last.width, log.left + log.width - last.left);
}

void Layout::placeBrowser() {
  const Rect& frame = at("frameMain");
  Rect& action = at("frameAction");
  setExtent(action.width, frame.width - 260 - action.left);
  action.top = frame.height - 1100;
  at("frameTarButtons").left = action.width - 1780;
  placeDivider();
  Rect& pane = at("DirPane");
  setExtent(pane.height, frame.height - 2445);
  for (const char* name : {"Dir1", "divider"}) at(name).height = pane.height;
  Rect& location = at("txtLocation");
  setExtent(location.width, pane.left + pane.width - location.left);
}

void Layout::placeDivider() {
  const Rect& frame = at("frameMain");
  Rect& bar = at("divider");
  bar.left = std::clamp(dividerPlace_, leastDivider, mostDivider());
  Rect& folders = at("Dir1");
  Rect& pane = at("DirPane");
  setExtent(folders.width, bar.left - folders.left);
  pane.left = bar.left + bar.width + 40;
  setExtent(pane.width, frame.width - bar.left - bar.width - 200);
  at("lblSelectionText").left = pane.left;
}

void Layout::placeSelection() {
  const Rect& pane = at("DirPane");
  Rect& buttons = at("frameDirPaneButtons");
  Rect& selected = at("frameSelected");
  for (Rect* frame : {&at("Frame1"), &buttons}) frame->left = pane.left + pane.width - frame->width;
  for (Rect* frame : {&buttons, &selected}) frame->top = pane.top + pane.height;
  setExtent(selected.width, buttons.left - selected.left - 20);
  Rect& text = at("txtSelect");
  setExtent(text.width, selected.width - text.left - 20);
}

void Layout::placeArchive() {
  const Rect& frame = at("frameUntar");
  Rect& buttons = at("frameUntarButtons");
  buttons.left = (frame.width - buttons.width) / 2;
  buttons.top = frame.height - 600;
  for (const char* name : {"tarTree", "TreeView1"}) {
    Rect& tree = at(name);
    setExtent(tree.width, frame.width - 240 - tree.left);
    setExtent(tree.height, frame.height - 2685);
  }
  at("frameTarSelector").top = at("tarTree").top + at("tarTree").height;
  at("cmdBack").top = at("frameTarSelector").top;
  for (const char* name : {"txtFileIn", "txtOutLocation"}) setExtent(at(name).width, frame.width - 2640);
  at("cmdGetFile").left = at("txtFileIn").left + at("txtFileIn").width;
  at("cmdSelectOut").left = at("txtOutLocation").left + at("txtOutLocation").width;
  at("cmdRefresh").left = at("cmdGetFile").left + 460;
}

/// The notice stands above the middle of the tree, the bar below it.
void Layout::placeProgress() {
  const Rect& tree = at("tarTree");
  const auto centre = [&tree](Rect& rect, int down) {
    rect.left = tree.left + (tree.width - rect.width) / 2;
    rect.top = tree.top + (tree.height - rect.height) / 2 + down;
  };
  centre(at("frameTarRefreshLabel"), -200);
  centre(at("pbTarRefresh"), 200);
}

int Layout::mostDivider() const {
  constexpr int leastRight = 800;  // of the frame, the bar included
  return std::max(leastDivider, (*this)["frameMain"].width - leastRight);
}

void Layout::setDividerPlace(int left) {
  dividerPlace_ = left;
  placeDivider();
}

void Layout::dragDivider(int x) {
  const Rect& bar = at("divider");
  setDividerPlace(std::clamp(bar.left + x - bar.width / 2, leastDivider, mostDivider()));
}

}  // namespace browser
