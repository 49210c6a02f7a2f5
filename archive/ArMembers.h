#pragma once

#include <string>

#include "platform/Files.h"

namespace archive {

/// What is wrong with an ar archive (binutils 2.40) that ar itself passes over, told from its member headers:
/// that it ends within a header or before the end of a member, or holds its members elsewhere. Empty:
/// nothing, or something that ar tells of. An archive that was cut between two members cannot be told from a
/// whole one.
std::string arProblem(const platform::Files& files, const std::string& path);

}  // namespace archive
