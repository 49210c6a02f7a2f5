#pragma once

#include <QPoint>

namespace platform::desktop {

/// The screen in the units that windows are placed in.
class Screen {
 public:
  virtual ~Screen() = default;
  virtual double dotsPerInchX() const = 0;  ///< 0 when no screen can be asked
  virtual double dotsPerInchY() const = 0;
  virtual QPoint pointer() const = 0;  ///< screen position of the mouse pointer
};

class DesktopScreen : public Screen {
 public:
  double dotsPerInchX() const override;
  double dotsPerInchY() const override;
  QPoint pointer() const override;
};

}  // namespace platform::desktop
