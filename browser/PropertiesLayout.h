#pragma once

#include <map>
#include <optional>
#include <string>

#include "browser/Layout.h"

namespace browser {

/// Widths of the value labels' texts in twips; nullopt for an empty one.
struct PropertiesWidths {
  std::optional<int> lblInfo;
  std::optional<int> lblLocation;
  int lblSize = 0;
  std::optional<int> lblModified;
  std::optional<int> lblPermissions;
};

/// The Properties window in twips.
struct PropertiesLayout {
  int width = 0;
  int height = 0;
  std::map<std::string, Rect, std::less<>> rects;  ///< by control name; what is hidden has none
};

/// The window is as wide as its widest text wants, but no wider than `mostWidth`.
PropertiesLayout doLayout(const PropertiesWidths& widths, int mostWidth);

int separatorWidth(int windowWidth);  ///< of Line1, twips

}  // namespace browser
