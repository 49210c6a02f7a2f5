#pragma once

#include <string>
#include <vector>

#include "archive/PackJob.h"
#include "shell/Program.h"

namespace shell {

/// `-qpack` without a window: `record` is switch, folder, names. Names are any entries that exist, hidden or
/// not; one that matches nothing is a line on standard error and the rest is still packed. No name is
/// refused; with `yes` it means all that the folder holds. The host path of the archive is the one line on
/// standard output. Returns the exit status: 0 done, 1 refused, failed, or a name that matched nothing.
int batchPack(Program& program, const std::vector<std::string>& record, bool yes);

/// Makes the archive of a quick pack, with the archive dialog's defaults where the program's options and
/// SOURCE_DATE_EPOCH say nothing else; holds the gate meanwhile.
archive::PackResult quickPack(Program& program, const archive::PackSelection& selection);

}  // namespace shell
