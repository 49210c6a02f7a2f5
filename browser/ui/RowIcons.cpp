#include "browser/ui/RowIcons.h"

#include <QPainter>

#include "browser/RowDetails.h"
#include "platform/desktop/ImageList.h"

namespace browser {

using platform::desktop::Emblem;
using platform::desktop::emblemIcon;
using platform::desktop::imageIcon;

namespace {

constexpr double dimming = 0.5;

enum Looks { Hidden = 1, Link = 2, Executable = 4, AllLooks = 8 };

int looksOf(const PaneRow& row) {
  return (row.hidden ? Hidden : 0) | (isLinkRow(row) ? Link : 0) | (isExecutableRow(row) ? Executable : 0);
}

QPixmap picture(int image, int looks, int side) {
  QPixmap plain(side, side);
  plain.fill(Qt::transparent);
  QPainter painter(&plain);
  if ((looks & Hidden) != 0) painter.setOpacity(dimming);
  imageIcon(image).paint(&painter, plain.rect());
  if ((looks & Link) != 0) emblemIcon(Emblem::Link).paint(&painter, plain.rect());
  if ((looks & Executable) != 0) emblemIcon(Emblem::Executable).paint(&painter, plain.rect());
  return plain;
}

}  // namespace

QIcon RowIcons::of(const PaneRow& row) {
  const int looks = looksOf(row);
  if (looks == 0) return imageIcon(row.image);
  QIcon& icon = made_[row.image * AllLooks + looks];
  if (icon.isNull())
    for (const int side : {16, 24, 32, 48, 64}) icon.addPixmap(picture(row.image, looks, side));
  return icon;
}

}  // namespace browser
