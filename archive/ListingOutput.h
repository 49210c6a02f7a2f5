#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace archive {

/// What is wrong with an archive, told from the output of its listing: the text of the message; nullopt when
/// the output is a listing. Remarks of tar and gzip (GNU tar 1.34, gzip 1.12) count at the start of a line
/// only. `path` stands in the message as it is given.
std::optional<std::string> listingProblem(std::string_view output, std::string_view path);

}  // namespace archive
