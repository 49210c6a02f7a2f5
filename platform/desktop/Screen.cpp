#include "platform/desktop/Screen.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace platform::desktop {

double DesktopScreen::dotsPerInchX() const {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? 0 : screen->logicalDotsPerInchX();
}

double DesktopScreen::dotsPerInchY() const {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? 0 : screen->logicalDotsPerInchY();
}

QPoint DesktopScreen::pointer() const { return QCursor::pos(); }

}  // namespace platform::desktop
