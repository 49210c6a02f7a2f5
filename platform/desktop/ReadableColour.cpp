#include "platform/desktop/ReadableColour.h"

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

QColor lightened(const QColor& colour, double part) {
  const auto towardsWhite = [part](double value) { return static_cast<float>(value + (1 - value) * part); };
  return QColor::fromRgbF(towardsWhite(colour.redF()), towardsWhite(colour.greenF()),
                          towardsWhite(colour.blueF()));
}

}  // namespace

double contrast(const QColor& one, const QColor& other) {
  const double lighter = std::max(luminance(one), luminance(other));
  const double darker = std::min(luminance(one), luminance(other));
  return (lighter + 0.05) / (darker + 0.05);
}

QColor readableColour(const QColor& wanted, const QColor& background) {
  const bool light = contrast(Qt::black, background) > contrast(Qt::white, background);
  for (int step = 0; step < steps && !light; ++step) {
    const QColor colour = lightened(wanted, static_cast<double>(step) / steps);
    if (contrast(colour, background) >= readable) return colour;
  }
  return light ? wanted : QColor(Qt::white);
}

}  // namespace platform::desktop
