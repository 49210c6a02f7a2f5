#pragma once

#include "archive/PackCommand.h"
#include "runtime/FilePane.h"
#include "runtime/Services.h"

namespace archive {

/// What is selected, or else the folder itself, must still exist: the stated message and false when something
/// is gone.
bool selectionExists(const runtime::Services& services, const PackSelection& selection);

enum class TarSelection { Stopped, Selected, WholeFolder };

/// What the file pane's selection stands for. With `whole`, the selected rows count as nothing selected: the
/// folder as a whole was asked for.
PackSelection packSelection(const runtime::FilePane& pane, bool whole);

/// The checks before the archive dialog: what is selected must still exist; with nothing selected, the user
/// is asked about the whole folder, and OK selects every row.
TarSelection checkSelection(const runtime::Services& services, runtime::FilePane& pane);

}  // namespace archive
