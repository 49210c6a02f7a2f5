#include "platform/desktop/ActiveWindow.h"

#include <QApplication>
#include <QWidget>

namespace platform::desktop {

QWidget* activeWindow() {
  QWidget* window = QApplication::activeWindow();
  while (window != nullptr && window->windowType() == Qt::Popup)
    window = window->parentWidget() == nullptr ? nullptr : window->parentWidget()->window();
  return window != nullptr ? window : QApplication::activeModalWidget();
}

}  // namespace platform::desktop
