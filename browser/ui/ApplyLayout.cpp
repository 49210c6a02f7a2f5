#include "browser/ui/ApplyLayout.h"

#include <QFontMetricsF>
#include <QWidget>
#include <algorithm>

#include "browser/ui/Divider.h"

namespace browser {
namespace {

int pixels(int twips, double scale) { return qRound(twips * scale); }
int twips(int pixels, double scale) { return qRound(pixels / scale); }

/// Edges are rounded, not widths, so that neighbours stay neighbours.
QRect pixelRect(const Rect& rect, double scale) {
  const QPoint corner(pixels(rect.left, scale), pixels(rect.top, scale));
  const QPoint end(pixels(rect.left + rect.width, scale), pixels(rect.top + rect.height, scale));
  return {corner, QSize(end.x() - corner.x(), end.y() - corner.y())};
}

QString widgetName(const std::string& name) {
  return name == "DirPane" ? QStringLiteral("DirPaneViews") : QString::fromStdString(name);
}

}  // namespace

double pixelsPerTwip(const QWidget& widget) {
  const QFontMetricsF font(widget.font());
  constexpr double plainLine = 15;      // pixels that the design gives a line of text
  constexpr double plainCaption = 100;  // and this caption
  const double needed = std::max(font.height() / plainLine,
                                 font.horizontalAdvance(QStringLiteral("Extract Selected")) / plainCaption);
  return plainPixelsPerTwip * std::max(1.0, needed);
}

void applyLayout(QWidget& root, const Layout& layout, double scale) {
  if (auto* const divider = root.findChild<Divider*>())
    divider->setWay(pixels(Layout::leastDivider, scale), pixels(layout.mostDivider(), scale));
  applyRects(root, layout.rects(), scale);
}

void applyRects(QWidget& root, const std::map<std::string, Rect, std::less<>>& rects, double scale) {
  for (const auto& [name, rect] : rects) {
    const auto widgets = root.findChildren<QWidget*>(widgetName(name));
    for (QWidget* widget : widgets)
      if (widget->window() == root.window()) widget->setGeometry(pixelRect(rect, scale));
  }
}

void resizeLayout(Layout& layout, QSize window, bool logShown, double scale) {
  layout.resize(twips(window.width(), scale), twips(window.height(), scale), logShown);
}

void dragDivider(Layout& layout, int x, double scale) { layout.dragDivider(twips(x, scale)); }

QSize startSize(double scale) {
  return {pixels(Layout::startWidth, scale), pixels(Layout::startHeight, scale)};
}

}  // namespace browser
