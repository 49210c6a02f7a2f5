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
  bool withWhatIsBelow = true;        ///< a folder brings along what lies below it
};

/// One run of the tool that unpacks. Its exit code and its error lines go to the log.
class ExtractJob {
 public:
  ExtractJob(const runtime::Services& services, ExtractPlan plan);
  /// The tool's status: -1 not started or ended by its console, 128 + n for a signal. Something that could
  /// not be put into its place makes it 1.
  int run();

 private:
  runtime::ToolResult runTar();
  runtime::ToolResult runAr();
  bool moveIn(const std::string& from);
  void logEnd(const runtime::ToolResult& run);

  runtime::Services services_;
  ExtractPlan plan_;
};

/// The options that make tar leave members out. nullopt when they do not fit on a command line.
std::optional<std::string> excludeOptions(const std::vector<std::string>& excludes);

}  // namespace archive
