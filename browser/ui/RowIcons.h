#pragma once

#include <QIcon>
#include <unordered_map>

#include "browser/PaneRow.h"

namespace browser {

/// The pictures of the pane's rows: that of the extension, with an emblem for links and one for executables
/// over it, dimmed for hidden entries. Each is made when it is first shown.
class RowIcons {
 public:
  QIcon of(const PaneRow& row);

 private:
  std::unordered_map<int, QIcon> made_;
};

}  // namespace browser
