#pragma once

#include <QHeaderView>
#include <QMainWindow>

#include "browser/Layout.h"
#include "runtime/Settings.h"

namespace shell {

/// How the user left the main window: its place and size, the splitter, the columns of the file pane. All are
/// lent.
class WindowMemory {
 public:
  WindowMemory(runtime::Settings& settings, QMainWindow& window, browser::Layout& layout,
               QHeaderView& columns)
      : settings_(settings), window_(window), layout_(layout), columns_(columns) {}

  /// Before the window shows. What was on a screen that is gone or smaller now is moved onto one; without a
  /// memory it has its starting size, as far as the screen has the room.
  void restore();
  void keep();

 private:
  void restorePlace();

  runtime::Settings& settings_;
  QMainWindow& window_;
  browser::Layout& layout_;
  QHeaderView& columns_;
};

}  // namespace shell
