#pragma once

#include "browser/ui/DrawnMenu.h"
#include "platform/desktop/Actions.h"

class QCheckBox;

namespace browser {

/// The cascade of "Show Files": whether hidden and system entries are shown. Its entries turn the two boxes
/// of the browsing area, which are lent.
class frmShowFiles : public DrawnMenu {
  Q_OBJECT

 public:
  frmShowFiles(platform::Busy& busy, QCheckBox& optShowHidden, QCheckBox& optShowSystem, DrawnMenu& opener);
};

}  // namespace browser
