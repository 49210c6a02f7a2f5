#include "platform/desktop/ReadableColour.h"

#include <QGuiApplication>
#include <cmath>

namespace platform::desktop {
namespace {

constexpr double readable = 4.5;
constexpr int steps = 20;

double luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

bool isLight(const QColor& background) {
  return contrast(Qt::black, background) > contrast(Qt::white, background);
}

}  // namespace

double contrast(const QColor& one, const QColor& other) {
  const double lighter = std::max(luminance(one), luminance(other));
  const double darker = std::min(luminance(one), luminance(other));
  return (lighter + 0.05) / (darker + 0.05);
}

QColor mixedColour(const QColor& one, const QColor& other, double share) {
  const auto mixed = [share](double part, double rest) {
    return static_cast<float>(part * share + rest * (1 - share));
  };
  return QColor::fromRgbF(mixed(one.redF(), other.redF()), mixed(one.greenF(), other.greenF()),
                          mixed(one.blueF(), other.blueF()));
}

QColor contrastingColour(const QColor& wanted, const QColor& background) {
  const QColor away = isLight(background) ? Qt::black : Qt::white;
  for (int step = 0; step < steps; ++step) {
    const QColor colour = mixedColour(away, wanted, static_cast<double>(step) / steps);
    if (contrast(colour, background) >= readable) return colour;
  }
  return away;
}

QColor readableColour(const QColor& wanted, const QColor& background) {
  return isLight(background) ? wanted : contrastingColour(wanted, background);
}

QFont slantedFont() {
  QFont font = QGuiApplication::font();
  font.setItalic(true);
  return font;
}

}  // namespace platform::desktop
