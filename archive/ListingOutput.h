#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Files.h"
#include "runtime/ArchiveKind.h"
#include "runtime/ToolResult.h"
#include "runtime/UserInterface.h"

namespace archive {

/// What is wrong with an archive, told from the run that listed it: the text of the message; nullopt when
/// what it printed is the whole listing. A package that ar lists is read itself: ar passes over what is cut
/// off. Remarks of tar and gzip (GNU tar 1.34, gzip 1.12) count at the start
/// of a line only; a run that did not end well and says no reason is told by how it ended. `path` stands in
/// the message as it is given.
std::optional<std::string> listingProblem(const runtime::ToolResult& run, runtime::ArchiveKind kind,
                                          const std::string& path, const platform::Files& files);

/// Shows such a text.
void tellListingProblem(runtime::UserInterface& user, const std::string& problem);

}  // namespace archive
