#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Process.h"
#include "runtime/ArchiveKind.h"

namespace archive {

// The commands that list and unpack an archive. Paths are Windows paths, given quoted in the tools' form.

/// How a listing is run: it changes nothing, and no name of a user or group in the archive gets into a line.
platform::RunManner listingManner();

/// Names with attributes: "tar.exe -i -Ptzvf ...", "ar -t ...".
std::string listCommand(runtime::ArchiveKind kind, std::string_view archivePath);
/// Names only, what the quick extraction asks for: "tar.exe -i -tzf ...".
std::string namesCommand(runtime::ArchiveKind kind, std::string_view archivePath);
/// The content of an ipk's member "packageSize".
std::string packageSizeCommand(std::string_view archivePath);

/// "tar.exe -i -C OUT -zxv --preserve-permissions -f ARCHIVE LIST"; `listText` is memberList(...), or options
/// that stand for it.
std::string tarExtractCommand(runtime::ArchiveKind kind, std::string_view archivePath,
                              std::string_view outFolder, std::string_view listText);
/// "ar.exe -x ARCHIVE LIST", to be run in the output folder.
std::string arExtractCommand(std::string_view archivePath, const std::vector<std::string>& members);

/// One member into a folder, with no more of its owner and mode than any new file has; `listText` names it.
std::string tarMemberCommand(runtime::ArchiveKind kind, std::string_view archivePath,
                             std::string_view outFolder, std::string_view listText);
/// The bytes of the first member of that name, printed.
std::string contentCommand(runtime::ArchiveKind kind, std::string_view archivePath, std::string_view member);

/// A member's name that the runner, in a command, would take for a path on disk: "/cygdrive/C/x".
bool readsAsPath(std::string_view member);

/// Each member in double quotes and followed by one blank.
std::string memberList(const std::vector<std::string>& members);

/// The output folder proposed for an archive: its path without its extension, as a folder.
std::string proposedOutFolder(std::string_view archivePath);

}  // namespace archive
