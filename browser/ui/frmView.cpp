#include "browser/ui/frmView.h"

namespace browser {

frmView::frmView(platform::Busy& busy, int viewMode, std::function<void(int)> choose, DrawnMenu& opener)
    : DrawnMenu("frmView",
                {{.index = 0, .caption = "     Icons", .top = 0, .checked = viewMode == 0},
                 {.index = 1, .caption = "     List", .top = 240, .checked = viewMode == 2},
                 {.index = 2, .caption = "     Details", .top = 480, .checked = viewMode == 3}},
                cascadeWidth, {}, nullptr, &opener) {
  const auto chooses = [this, choose = std::move(choose)](int mode) {
    return [this, choose, mode] {
      closeAll();
      choose(mode);
    };
  };
  new platform::desktop::ActionTable(
      *this, busy,
      {{"mnuRightClick_0", chooses(0)}, {"mnuRightClick_1", chooses(2)}, {"mnuRightClick_2", chooses(3)}});
}

}  // namespace browser
