#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "archive/ExtractGuard.h"
#include "archive/ExtractRun.h"
#include "archive/ExtractVerdict.h"
#include "archive/ListingJob.h"
#include "archive/OverwriteAsker.h"
#include "archive/Standing.h"

namespace archive {

enum class Extract {
  All,       ///< "Extract All"
  Selected,  ///< "Extract Selected"
  Quickly,   ///< the command line's: the whole archive, from a listing of names
};

/// What an extraction works on, taken at the click.
struct ExtractRequest {
  Extract what = Extract::Quickly;
  std::string archivePath;
  std::string outFolder;
  std::optional<ArchiveTree> tree = {};  ///< with its check marks; none: the archive is listed first
  std::string shownAs = {};              ///< what the log calls the archive; empty: its path
};

/// How an extraction ended; the user has been told, except of what the log alone says.
struct Extraction {
  runtime::JobEnd end = runtime::JobEnd::Refused;
  Focus focus = Focus::None;
  bool toolRan = false;
  bool logTells = false;  ///< what was logged says what is missing, and why
};

/// Extracts an archive: every check, question and message, the guard against members that lead out of the
/// output folder, and the run. The extract frame, the quick extraction and the batch form start it.
class ExtractJob {
 public:
  ExtractJob(const runtime::Services& services, OverwriteAsker& asker, ListingProgress& progress,
             ExtractRequest request);
  Extraction run();

 private:
  Extraction ExtractArchive();
  void removeEmptyFolder() const;
  Extraction QuickExtract();
  bool begin();
  bool folderIsChosen();
  bool settleFolder();
  runtime::JobEnd settleTree();
  runtime::JobEnd listNames();
  const std::vector<GuardedMember>* listedMembers();
  bool isBad(const runtime::ToolResult& run) const;
  Names guardAgainst(const std::vector<GuardedMember>& members, const Names& asked,
                     std::vector<RefusedMember> refused = {});
  bool guardNames();
  std::vector<std::string> chooseMembers(const ArchiveTree& tree, bool all);
  std::vector<std::string> keptNames();
  std::size_t countAll() const;
  bool mayExtract(const std::string& member, const std::string& inTar);
  void passFewNames();
  Extraction unpack();
  Extraction refuse(Focus focus = Focus::None) const;
  Extraction nothingToExtract() const;
  bool isTar() const { return plan_.kind != runtime::ArchiveKind::Ipk; }
  bool stopped() const { return services_.system.busy.stopRequested(); }

  runtime::Services services_;
  OverwriteAsker& asker_;
  ListingProgress& progress_;
  Standing standing_{services_.system.files};
  ExtractRequest request_;
  ExtractPlan plan_{};
  std::vector<std::string> names_;  // of a quick extraction
  Names excludes_;
  decltype(Verdict::below) below_;  // members that a name which was asked for brings along
  std::optional<std::vector<GuardedMember>> members_;
  std::set<std::string> labels_;
  OverwriteAnswer answer_ = OverwriteAnswer::NothingAsked;
  bool answeredNo_ = false;
  bool folderStood_ = false;  // before this run
  Focus focus_ = Focus::None;
};

}  // namespace archive
