#pragma once

#include <QColor>
#include <QFont>

namespace platform::desktop {

/// How far two colours stand apart, 1 (the same) to 21 (black on white): relative luminance as the Web's
/// accessibility guide computes it.
double contrast(const QColor& one, const QColor& other);

/// A stated colour for text. It stays as it is on a light background; on a dark one it is lightened as far as
/// it takes to be read (4.5 to 1).
QColor readableColour(const QColor& wanted, const QColor& background);

/// A colour for text on any background: lightened or darkened as far as it takes to be read (4.5 to 1).
QColor contrastingColour(const QColor& wanted, const QColor& background);

/// `share` (0 to 1) of a colour, the rest of another one.
QColor mixedColour(const QColor& one, const QColor& other, double share);

/// A second sign beside a colour, for whoever does not see that: the program's font in italics.
QFont slantedFont();

}  // namespace platform::desktop
