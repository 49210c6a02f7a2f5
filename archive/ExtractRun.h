#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "archive/ExtractGuard.h"
#include "archive/ScratchFolder.h"
#include "runtime/ArchiveKind.h"
#include "runtime/Services.h"

namespace archive {

/// All that is settled before the tool starts.
struct ExtractPlan {
  runtime::ArchiveKind kind;
  std::string archivePath;
  std::string shownAs;                   ///< what the log calls it
  std::string outFolder;                 ///< trailing backslash
  std::vector<std::string> members;      ///< none: everything
  std::vector<std::string> excludes;     ///< left out with all below
  std::vector<std::string> spared = {};  ///< names of the output folder, which keeps its mode and owner
  Names likeRemarks = {};                ///< members that read as a remark of tar
  /// Where ar does not find each member by its name, it unpacks all, and `members` are moved in: the folders
  /// that it needs for that, each behind the one it lies in.
  std::optional<std::vector<std::string>> wholly = {};
  /// What may stand in the output folder already; none where that was made for this run.
  std::vector<std::string> replaceable;
  bool withWhatIsBelow = true;                         ///< a folder brings along what lies below it
  std::size_t count = 0;                               ///< of members that tar names meanwhile; 0: not known
  std::function<void(std::size_t done)> counted = {};  ///< who counts them, instead of a console
};

/// The step that unpacks: one run of the tool. How it ended and its error lines go to the log. What a run
/// that was ended leaves half made goes.
class ExtractRun {
 public:
  ExtractRun(const runtime::Services& services, ExtractPlan plan);
  /// How the tool ended. Something that could not be put into its place makes a good status 1.
  runtime::ToolResult run();

 private:
  runtime::ToolResult runTar();
  runtime::ToolResult runAr();
  runtime::VisibleRun view() const;
  std::optional<std::string> members();
  bool exclusions(std::string& options);
  bool writeFile(const std::string& name, const std::string& bytes);
  bool isToBeLogged(std::string_view line) const;
  runtime::ToolResult unpack(const std::string& command);
  void logEnd(const runtime::ToolResult& run);

  runtime::Services services_;
  ExtractPlan plan_;
  std::optional<ScratchFolder> place_;  // for files that tar reads
};

}  // namespace archive
