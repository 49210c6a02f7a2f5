#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "archive/ArchiveListing.h"
#include "archive/ExtractGuard.h"
#include "archive/ExtractJob.h"
#include "archive/OverwriteAsker.h"

namespace archive {

/// How an extraction ended; the user has been told.
struct ExtractResult {
  bool started = false;   ///< the tool ran, whatever its exit code
  bool complete = false;  ///< all that was asked for is there
  Focus focus = Focus::None;
};

/// Extracts an archive: every check, question and message, the guard against members that lead out of the
/// output folder, and the run. The extract frame, the quick extraction and the batch form call it.
class Extractor {
 public:
  Extractor(const runtime::Services& services, OverwriteAsker& asker);

  /// Gives the tree of the archive, listing it first where that is needed; nullptr when it cannot be listed.
  using TreeSource = std::function<const ArchiveTree*()>;

  /// "Extract All" (`all`) and "Extract Selected". `outFolder` is the text of its box.
  ExtractResult ExtractArchive(const std::string& archivePath, const std::string& outFolder, bool all,
                               const TreeSource& tree);
  /// The command line's extraction: the whole archive, from a listing of names.
  ExtractResult QuickExtract(const std::string& archivePath, const std::string& outFolder,
                             ListingProgress& progress);

 private:
  bool begin(const std::string& archivePath);
  bool folderIsChosen(const std::string& outFolder);
  bool settleFolder(const std::string& outFolder);
  std::vector<std::string> chooseMembers(const ArchiveTree& tree, bool all);
  std::vector<std::string> keptNames(const std::vector<std::string>& names, ListingProgress& progress);
  const std::vector<GuardedMember>& listedMembers();
  std::vector<std::string> listedNames();
  std::set<std::string> guardAgainst(const std::vector<GuardedMember>& members,
                                     const std::set<std::string>& asked);
  void guardNames(const std::vector<std::string>& names, bool folderStands);
  void logLeftOut(const std::vector<RefusedMember>& refused);
  void passFewNames();
  bool mayExtract(const std::string& member, const std::string& inTar);
  ExtractResult refuse(Focus focus = Focus::None);
  ExtractResult nothingToExtract();
  ExtractResult run();

  runtime::Services services_;
  OverwriteAsker& asker_;
  ExtractPlan plan_{};
  std::set<std::string> excludes_;
  std::optional<std::vector<GuardedMember>> members_;
  OverwriteAnswer answer_ = OverwriteAnswer::NothingAsked;
  bool answeredNo_ = false;
  Focus focus_ = Focus::None;
};

}  // namespace archive
