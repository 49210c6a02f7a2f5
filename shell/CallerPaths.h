#pragma once

#include <string>
#include <string_view>

#include "platform/DriveTable.h"

namespace shell {

/// A path that the caller typed, in Windows form. `X:\`, `X:/` and `\\server` texts stay as they are;
/// `/cygdrive/x/...`, absolute and relative host paths are translated (bytes that Windows names cannot say
/// are held, ".." keeps the host's meaning). A relative one starts at the caller's folder, a host path. An
/// empty text stays empty: it names nothing, not the caller's folder.
std::string toWindowsPath(const platform::DriveTable& drives, std::string_view callerFolderHost,
                          std::string_view text);

}  // namespace shell
