#include "platform/desktop/ColumnWidths.h"

#include <QStringList>
#include <algorithm>

#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

constexpr int narrowest = 16;  // pixels; can be seen and dragged
constexpr int widest = 4000;

/// One that fills what is left has no width of its own.
int columnsOf(const QHeaderView& header) { return header.count() - (header.stretchLastSection() ? 1 : 0); }

}  // namespace

std::string columnWidths(const QHeaderView& header) {
  QStringList widths;
  for (int column = 0; column < columnsOf(header); ++column)
    widths.append(QString::number(header.sectionSize(column)));
  return fromControl(widths.join(QLatin1Char(' ')));
}

void setColumnWidths(QHeaderView& header, std::string_view text) {
  QList<int> widths;
  for (const QString& word : toControl(text).split(QLatin1Char(' '))) widths.append(word.toInt());
  const auto readable = [](int width) { return width >= narrowest && width <= widest; };
  if (widths.size() != columnsOf(header) || !std::all_of(widths.begin(), widths.end(), readable)) return;
  for (int column = 0; column < columnsOf(header); ++column) header.resizeSection(column, widths[column]);
}

}  // namespace platform::desktop
