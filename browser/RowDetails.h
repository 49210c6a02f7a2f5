#pragma once

#include <string>

#include "browser/PaneRow.h"

namespace browser {

bool isLinkRow(const PaneRow& row);  ///< known once `ls` has spoken
/// A file with an x in its mode, or with an extension of the terminal's executables.
bool isExecutableRow(const PaneRow& row);

/// What is known of a row and has no column, a line each: exact size (files), owner and group as numbers,
/// where a link leads to, what its colour and picture say.
std::string rowDetails(const PaneRow& row);

}  // namespace browser
