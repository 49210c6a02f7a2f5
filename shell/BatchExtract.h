#pragma once

#include <string>
#include <vector>

#include "shell/Program.h"

namespace shell {

/// `-extract` without a window: `record` is switch, folder, archive, output folder. What stands in the output
/// folder already is replaced only where the user agrees beforehand; otherwise nothing is extracted. The host
/// path of the output folder is the one line on standard output. Returns the exit status: 0 everything was
/// extracted, 1 refused, failed, or a member was left out.
int batchExtract(Program& program, const std::vector<std::string>& record);

}  // namespace shell
