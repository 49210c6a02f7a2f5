#pragma once

#include "archive/PackCommand.h"
#include "platform/Files.h"

namespace archive {

/// The current folder is usr8 itself: what is packed goes below it.
bool insideUsr8(const PackSelection& selection);

/// Whether exactly one folder is selected (a link to one counts).
bool oneFolder(const platform::Files& files, const PackSelection& selection);

/// The name list of the selection (what stands in folders is looked up on disk, sorted by bytes), without the
/// output itself and without the scratch folders of runs.
NameList nameList(const platform::Files& files, const PackSettings& settings, const PackSelection& selection);

}  // namespace archive
