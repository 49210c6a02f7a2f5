#pragma once

#include <string>

#include "archive/ArchiveTree.h"
#include "runtime/ArchiveKind.h"
#include "runtime/Services.h"

namespace archive {

/// Logs what the control file of a package says of it, as the step of a job. A package without one that can
/// be read is passed over in silence. `tree` is the package's whole listing.
void logPackage(const runtime::Services& services, runtime::ArchiveKind kind, const std::string& path,
                const ArchiveTree& tree);

}  // namespace archive
