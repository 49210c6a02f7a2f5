#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/ArchiveKind.h"
#include "runtime/Services.h"

namespace archive {

/// All that is settled before the tool starts.
struct ExtractPlan {
  runtime::ArchiveKind kind;
  std::string archivePath;
  std::string outFolder;              ///< trailing backslash
  std::vector<std::string> members;   ///< none: everything
  std::vector<std::string> excludes;  ///< left out with all below
  /// What may stand in the output folder already; none where that was made for this run.
  std::vector<std::string> replaceable;
  bool withWhatIsBelow = true;  ///< a folder brings along what lies below it
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
  bool moveIn(const std::string& from);
  runtime::ToolResult unpack(const std::string& command);
  void logEnd(const runtime::ToolResult& run);

  runtime::Services services_;
  ExtractPlan plan_;
};

/// The options that make tar leave members out. nullopt when they do not fit on a command line.
std::optional<std::string> excludeOptions(const std::vector<std::string>& excludes);

}  // namespace archive
