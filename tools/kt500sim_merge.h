#pragma once

#include <string>

namespace kt500sim {

/// Moves what one folder holds into another of the same file system: folders of one name become one, with the
/// mode of the moved one; what else is in the way is replaced. Links are never followed. Empty when all was
/// moved, else why not; where a folder that holds something would have to make way, nothing was moved.
std::string mergeInto(const std::string& from, const std::string& into);

}  // namespace kt500sim
