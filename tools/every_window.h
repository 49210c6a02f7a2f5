#pragma once

#include <functional>

class QWidget;

namespace tools {

/// A window as it is shown and filled, and the name of what is to be seen: the window's own where it has one
/// look only. At "menu" the pop-up menus are open over the main window.
using Visit = std::function<void(QWidget& window, const char* name)>;

/// One session with the program, window after window, over the disk that PAKRUNE_DRIVES names
/// (every_window.sh makes one). Needs a QApplication.
void openEveryWindow(const Visit& visit);

}  // namespace tools
