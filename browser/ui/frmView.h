#pragma once

#include <functional>

#include "browser/ui/DrawnMenu.h"
#include "platform/desktop/Actions.h"

namespace browser {

/// The cascade of "View": how the file pane shows its rows.
class frmView : public DrawnMenu {
  Q_OBJECT

 public:
  /// `viewMode` is the present one (0 icons, 2 list, 3 details); `choose` gets the one that is chosen.
  frmView(platform::Busy& busy, int viewMode, std::function<void(int)> choose, DrawnMenu& opener);
};

}  // namespace browser
