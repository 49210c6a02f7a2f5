#pragma once

#include <optional>
#include <string>

#include "archive/ArchiveTree.h"
#include "archive/ListingProgress.h"
#include "runtime/ArchiveKind.h"
#include "runtime/JobEnd.h"
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

/// Chosen, there, a regular file, and of a known kind. `notChosen` is the text for a path that is still
/// `noArchiveChosen`.
CheckedArchive checkArchive(const runtime::Services& services, const std::string& path,
                            const char* notChosen);

/// Whether tar (or ar) is there; a message says when it is not.
bool toolFound(const runtime::Services& services, runtime::ArchiveKind kind);

/// How a listing ended. Only one that is Done shows the whole archive; a stopped one holds the nodes so far,
/// any other none.
struct Listing {
  runtime::JobEnd end = runtime::JobEnd::Refused;
  ArchiveTree tree = {};
};

/// Lists an archive as the step of a job; a stop is told by that job.
Listing listArchive(const runtime::Services& services, runtime::ArchiveKind kind, const std::string& path,
                    ListingProgress& progress);

/// The listing of an archive: every check and message, the run of the tool, and the tree.
class ListingJob {
 public:
  ListingJob(const runtime::Services& services, std::string path, ListingProgress& progress)
      : services_(services), path_(std::move(path)), progress_(progress) {}
  Listing run();

 private:
  runtime::Services services_;
  std::string path_;
  ListingProgress& progress_;
};

}  // namespace archive
