#pragma once

#include <string>
#include <string_view>

#include "platform/Files.h"

namespace archive {

/// What hinders packing, in words for whoever asked for it. Folders are Windows paths.

constexpr const char* copyFailed = "Unable to copy what is to be packed";

std::string nothingToPack(const std::string& folder);
std::string cannotWrite(const std::string& folder, int systemError);
/// The same for a write that has just failed, with what the system says of the folder.
std::string cannotWrite(const platform::Files& files, const std::string& folder);
std::string cannotCopy(const std::string& path);
std::string noTemporaryFolder(const platform::Files& files, int systemError);
std::string diskFull(const std::string& folder);
std::string appearedMeanwhile(const std::string& path);

/// Whether what a tool printed (English, as LC_ALL=C.UTF-8 makes it) ends a line with the system's words for
/// a full disk.
bool tellsOfFullDisk(std::string_view output);

}  // namespace archive
