#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "archive/PackCommand.h"
#include "platform/DriveTable.h"

namespace archive {

/// Something that a run packs with all below it.
struct PackedRoot {
  std::string path;    ///< resolved
  std::string member;  ///< its name in the archive, no trailing "/"
};

/// Where the names of a list really stand, in its order. Links to the working folder are followed; a name
/// itself is packed as a link, unless it ends in "/".
std::vector<std::string> resolvedNames(const platform::DriveTable& drives, const NameList& list);

/// `staged`: with "../usr8"; `insideUsr8`: the names go below it.
std::vector<PackedRoot> packedRoots(const platform::DriveTable& drives, const NameList& list, bool staged,
                                    bool insideUsr8);

/// The name that a resolved path has in the archive; empty when it is not packed.
std::string memberName(const std::vector<PackedRoot>& roots, std::string_view resolved);

}  // namespace archive
