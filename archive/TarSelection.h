#pragma once

#include <optional>

#include "archive/PackCommand.h"
#include "runtime/FilePane.h"
#include "runtime/Services.h"

namespace archive {

/// What is selected, or else the folder itself, must still exist: the stated message and false when something
/// is gone.
bool selectionExists(const runtime::Services& services, const PackSelection& selection);

/// What is to be packed, taken from the file pane once, at the click: what is selected must still exist; with
/// nothing selected, the user is asked about the whole folder, and OK selects every row (the selection stays
/// an empty one: the folder as a whole was asked for). nullopt: no, or told why not.
std::optional<PackSelection> checkSelection(const runtime::Services& services, runtime::FilePane& pane);

}  // namespace archive
