#pragma once

#include <functional>
#include <string>

#include "platform/Stop.h"

namespace platform {

/// Visits all folders below a host folder; links are not followed, and what cannot be read is passed over.
/// `enter` gets the way from the folder down ("a/b") and says whether to go on below. Reads names and kinds
/// only, so that it costs little beside any work on the files.
void walkFolders(const std::string& folder, const Stop& stop,
                 const std::function<bool(const std::string& below)>& enter);

}  // namespace platform
