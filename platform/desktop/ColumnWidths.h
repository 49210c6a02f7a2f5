#pragma once

#include <QHeaderView>
#include <string>
#include <string_view>

namespace platform::desktop {

/// The widths of a header's columns, as a text for the settings: "238 98 105", pixels in the order of the
/// model; without a last one that fills what is left.
std::string columnWidths(const QHeaderView& header);

/// Gives the columns these widths. A text of another number of columns, or with a width that is no good for
/// reading, changes nothing.
void setColumnWidths(QHeaderView& header, std::string_view text);

}  // namespace platform::desktop
