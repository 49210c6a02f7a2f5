#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace runtime {

enum class ArchiveKind { Tar, Gzip, Bzip2, Ipk };

/// Decided from the path's name, exact and case-sensitive: ".tar", then .gz .z .tgz .taz, then
/// .bz2 .bz .tbz2 .tbz (text from the last "."), then ".ipk". nullopt: not recognised.
std::optional<ArchiveKind> archiveKind(std::string_view path);

/// The letter spliced into the tar command line: "", "z", "j", or "ipk".
std::string kindLetter(ArchiveKind kind);

/// Whether a name looks like an archive, without regard to case; ".ipk" is not among them.
bool IsArchiveName(std::string_view name);

/// Whether the extract frame opens on a file of this name by itself: an archive's name, or ".ipk" exactly.
bool opensAsArchive(std::string_view path);

}  // namespace runtime
