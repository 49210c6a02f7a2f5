#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/Lines.h"

namespace archive {

/// One line of a verbose tar listing (GNU tar 1.34, LC_ALL=C.UTF-8), as printed: names are in tar's escape
/// quoting. The views lie in the line.
struct ArchiveEntry {
  std::string_view mode;      ///< "-rwxr-xr-x"
  std::string_view owner;     ///< "0/1", "root/root"; may hold blanks
  std::string_view size;      ///< bytes, or "major,minor" of a device
  std::string_view dateTime;  ///< "2006-05-04 13:22"
  std::string_view path;      ///< the rest of the line: the name and, for a link, where it leads

  bool isLink() const { return mode.front() == 'l' || mode.front() == 'h'; }
};

/// The fields of a line, found from its date and time; where it has none, by counting words. nullopt for what
/// names no member: remarks of tools, blank lines, volume labels.
std::optional<ArchiveEntry> parseListingLine(std::string_view line);

/// Of an entry's size; nullopt of a device.
std::optional<std::uint64_t> byteCount(const ArchiveEntry& entry);

/// An entry's name apart from what a link's line says behind it, both as printed.
struct EntryPath {
  std::string_view name;
  std::optional<std::string_view> target;  ///< only for symbolic and hard links
};
EntryPath splitLinkText(const ArchiveEntry& entry);
/// A link's line can be read in as many ways as it holds what stands between the two. The first is that of
/// splitLinkText.
std::vector<EntryPath> linkReadings(const ArchiveEntry& entry);

/// A name that tar printed in its escape quoting, in the form that names have inside the program; for several
/// components too.
std::string heldName(std::string_view printed);

/// tar's own words, and those of the programs that it starts, among the names that it lists: a line that
/// begins with the program's name, or a line of bzip2's advice.
bool isRemark(std::string_view line);
/// The same among the names that ar lists.
bool isArRemark(std::string_view line);
/// A remark that does not stand for an error.
bool isHarmlessRemark(std::string_view line);

using runtime::completeLines;

}  // namespace archive
