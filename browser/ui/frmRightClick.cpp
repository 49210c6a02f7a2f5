#include "browser/ui/frmRightClick.h"

#include <utility>

namespace browser {
namespace {

constexpr int menuWidth = 2250;  // twips

std::vector<DrawnMenu::Entry> menuEntries() {
  return {{.index = frmRightClick::Serial, .caption = "  Download to Kt500 (Serial)", .top = 0},
          {.index = frmRightClick::Network, .caption = "  Download to Kt500 (Network)", .top = 240},
          {.index = frmRightClick::Refresh, .caption = "  Refresh", .top = 560},
          {.index = frmRightClick::OpenFolder, .caption = "  Open Containing Folder...", .top = 800},
          {.index = frmRightClick::View, .caption = "  View", .top = 1080, .arrow = "Image1"},
          {.index = frmRightClick::ShowFiles, .caption = "  Show Files", .top = 1335, .arrow = "Image2"},
          {.index = frmRightClick::Properties, .caption = "  Properties", .top = 1635},
          {.index = frmRightClick::Cancel, .caption = "  Cancel", .top = 2160, .byKeys = false}};
}

}  // namespace

frmRightClick::frmRightClick(platform::Busy& busy, std::vector<platform::desktop::Action> rows,
                             Cascade showFiles, Cascade view, QWidget* parent)
    : DrawnMenu("frmRightClick", menuEntries(), menuWidth, {498, 1582, 1995}, parent),
      showFiles_(std::move(showFiles)),
      view_(std::move(view)) {
  new platform::desktop::ActionTable(*this, busy, closingFirst(std::move(rows)));
}

std::vector<platform::desktop::Action> frmRightClick::closingFirst(
    std::vector<platform::desktop::Action> rows) {
  for (platform::desktop::Action& row : rows)
    row.handler = [this, handler = std::move(row.handler)] {
      closeAll();
      handler();
    };
  rows.push_back({"mnuRightClick_5", [this] { closeAll(); }, {}, platform::desktop::WhileBusy::Acts});
  return rows;
}

void frmRightClick::entered(int index) {
  if (index == cascadeOf_ && !cascade_.isNull() && cascade_->isVisible()) return;
  if (!cascade_.isNull()) cascade_->close();
  cascadeOf_ = index;
  cascade_ = index == ShowFiles ? showFiles_(*this) : index == View ? view_(*this) : nullptr;
  if (!cascade_.isNull()) openBeside(*cascade_, index);
}

}  // namespace browser
