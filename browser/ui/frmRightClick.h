#pragma once

#include <functional>

#include "browser/ui/DrawnMenu.h"
#include "platform/desktop/Actions.h"

namespace browser {

/// The file pane's pop-up menu. Two of its entries open cascades while the mouse or Right is on them.
class frmRightClick : public DrawnMenu {
  Q_OBJECT

 public:
  enum Entries {
    Properties = 0,
    Serial = 1,
    Network = 2,
    ShowFiles = 3,
    Refresh = 4,
    Cancel = 5,
    OpenFolder = 6,
    View = 7
  };
  using Cascade = std::function<DrawnMenu*(DrawnMenu& opener)>;  ///< makes one, as a child of the menu

  /// `rows` wire the entries by their names; the menu closes before a handler runs.
  frmRightClick(platform::Busy& busy, std::vector<platform::desktop::Action> rows, Cascade showFiles,
                Cascade view, QWidget* parent);

 protected:
  void entered(int index) override;

 private:
  std::vector<platform::desktop::Action> closingFirst(std::vector<platform::desktop::Action> rows);

  Cascade showFiles_, view_;
  QPointer<DrawnMenu> cascade_;
  int cascadeOf_ = none;
};

}  // namespace browser
