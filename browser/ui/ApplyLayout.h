#pragma once

#include <QSize>

#include "browser/Layout.h"

class QWidget;

namespace browser {

constexpr double plainPixelsPerTwip = 96.0 / 1440.0;

/// 96 pixels are 1440 twips, times one factor of at least 1 where the widget's font needs more room.
double pixelsPerTwip(const QWidget& widget);

/// Gives every widget below `root` that has the name of a rectangle its place; names that no widget has are
/// left out. `root` is the area below the menu bar. The file pane's rectangle places both of its views.
void applyLayout(QWidget& root, const Layout& layout, double pixelsPerTwip);

/// The same for other rectangles by name.
void applyRects(QWidget& root, const std::map<std::string, Rect, std::less<>>& rects, double pixelsPerTwip);

/// The layout for a main window of that many pixels (menu bar included).
void resizeLayout(Layout& layout, QSize window, bool logShown, double pixelsPerTwip);

/// The splitter's pointer is `x` pixels from its left edge.
void dragDivider(Layout& layout, int x, double pixelsPerTwip);

QSize startSize(double pixelsPerTwip);  ///< of the main window, pixels

}  // namespace browser
