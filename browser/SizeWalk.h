#pragma once

#include <dirent.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/Stop.h"

namespace browser {

using OpenFolder = std::unique_ptr<DIR, int (*)(DIR*)>;

/// A name seen from an open folder (or AT_FDCWD); null when it is no folder that can be read.
OpenFolder openFolder(int at, const char* name, int furtherFlags = 0);

/// The bytes of all files below an open folder, on all levels. Each name counts for itself. Links are not
/// followed; they, folders and special files add nothing, and neither does what cannot be read. A stop ends
/// it within an entry. However deep the tree, it needs a bounded number of descriptors and little stack.
///
/// Every folder below is offered to `give` first: whoever moves it away counts it.
std::uint64_t sizeBelow(OpenFolder folder, const platform::Stop& stop,
                        const std::function<void(OpenFolder&)>& give);

}  // namespace browser
