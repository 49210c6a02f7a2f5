#pragma once

#include <optional>
#include <string>

#include "archive/ArchiveTree.h"
#include "archive/ListingProgress.h"
#include "runtime/ArchiveKind.h"
#include "runtime/Services.h"

namespace archive {

/// What the boxes of the extract frame hold while nothing is chosen.
constexpr const char* noArchiveChosen = "Select Tar File To Extract";
constexpr const char* noFolderChosen = "Select Output Folder";

/// The box that a refusal puts the keyboard focus into, its text selected.
enum class Focus { None, ArchivePath, OutputFolder };

/// An archive that may be worked on, or why not (the user has been told).
struct CheckedArchive {
  std::optional<runtime::ArchiveKind> kind;
  Focus focus = Focus::None;
};

/// Chosen, there, and of a known kind. `notChosen` is the text for a path that is still `noArchiveChosen`.
CheckedArchive checkArchive(const runtime::Services& services, const std::string& path,
                            const char* notChosen);

/// Whether tar (or ar) is there; a message says when it is not.
bool toolFound(const runtime::Services& services, runtime::ArchiveKind kind);

/// What the tool lists, with attributes. nullopt after a message that says what is wrong.
std::optional<std::string> readListing(const runtime::Services& services, runtime::ArchiveKind kind,
                                       const std::string& path);

/// The tree of a listing. A cancelled one holds the lines so far.
ArchiveTree fillTree(const runtime::Services& services, runtime::ArchiveKind kind, const std::string& path,
                     std::string listing, ListingProgress& progress);

}  // namespace archive
