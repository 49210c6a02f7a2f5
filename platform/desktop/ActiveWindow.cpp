#include "platform/desktop/ActiveWindow.h"

#include <QApplication>
#include <QWidget>

namespace platform::desktop {
namespace {

QWidget* visibleWindow() {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (window->isVisible() && (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog))
      return window;
  return nullptr;
}

}  // namespace

QWidget* activeWindow() {
  QWidget* window = QApplication::activeWindow();
  while (window != nullptr && window->windowType() == Qt::Popup)
    window = window->parentWidget() == nullptr ? nullptr : window->parentWidget()->window();
  if (window == nullptr) window = QApplication::activeModalWidget();
  return window != nullptr ? window : visibleWindow();
}

}  // namespace platform::desktop
