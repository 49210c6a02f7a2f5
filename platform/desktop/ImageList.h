#pragma once

#include <QIcon>

namespace platform::desktop {

/// The picture of an image index (1 to 21), for 16 and 32 pixels and any scale; legible on light and dark
/// ground. An empty icon for any other index. Made once and kept.
QIcon imageIcon(int index);

enum class Emblem { Link, Executable };

/// A small sign to be drawn over a picture of the same size; the rest of it is transparent.
QIcon emblemIcon(Emblem emblem);

QIcon programIcon();  ///< of the windows, at any size

}  // namespace platform::desktop
