#pragma once

#include <string>
#include <string_view>

#include "platform/DriveTable.h"

namespace platform {

/// The one Windows path of an entry: links and ".." on the way to it are followed, its own name is not.
/// The path as the table writes it where the way does not exist; empty where it names nothing here.
std::string resolvedPath(const DriveTable& drives, std::string_view path);

/// Where a file gets that is written to a path: a link as the last name leads on, also to where nothing is. A
/// path that is no link is given back as it is, and so is one whose links have no end.
std::string linkEnd(const DriveTable& drives, const std::string& path);

/// The same as resolvedPath with a link as the last name followed too: what a folder really is.
std::string resolvedFolder(const DriveTable& drives, std::string_view folder);

/// A path with a ".." in it in the form of resolvedPath, so that every component is a name; any other as it
/// is.
std::string withoutDotDot(const DriveTable& drives, const std::string& path);

}  // namespace platform
