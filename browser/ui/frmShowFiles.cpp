#include "browser/ui/frmShowFiles.h"

#include <QCheckBox>
#include <QPointer>

namespace browser {

frmShowFiles::frmShowFiles(platform::Busy& busy, QCheckBox& optShowHidden, QCheckBox& optShowSystem,
                           DrawnMenu& opener)
    : DrawnMenu(
          "frmShowFiles",
          {{.index = 0, .caption = "     Hidden Files", .top = 0, .checked = optShowHidden.isChecked()},
           {.index = 1, .caption = "     System Files", .top = 240, .checked = optShowSystem.isChecked()}},
          cascadeWidth, {}, nullptr, &opener) {
  const auto turns = [this](QCheckBox& box) {
    return [this, box = QPointer<QCheckBox>(&box)] {
      closeAll();
      if (!box.isNull()) box->click();
    };
  };
  new platform::desktop::ActionTable(
      *this, busy, {{"mnuRightClick_0", turns(optShowHidden)}, {"mnuRightClick_1", turns(optShowSystem)}});
}

}  // namespace browser
