#pragma once

class QWidget;

namespace platform::desktop {

/// The window that a box, a panel or a picker belongs to: the active one, else the innermost modal one, else
/// one that is visible (another program's window is the active one); never a menu or another pop-up that
/// vanishes under its box. nullptr when no window is open.
QWidget* activeWindow();

}  // namespace platform::desktop
