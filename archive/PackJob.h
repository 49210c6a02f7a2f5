#pragma once

#include <optional>
#include <string>
#include <vector>

#include "archive/PackCommand.h"
#include "archive/PackRunner.h"
#include "archive/PackedRoots.h"
#include "archive/Staging.h"

namespace archive {

/// All that is settled before tar starts.
struct PackPlan {
  PackSettings settings;
  runtime::ArchiveKind kind;
  char mode;  ///< 'c', or 'r' to append
  NameList list;
  bool insideUsr8;  ///< the current folder is usr8 itself
};

/// One run of tar: it writes a file of its own inside nothing that is packed, which replaces the output
/// only when it is good. A run that fails changes nothing.
class PackJob {
 public:
  PackJob(const runtime::Services& services, PackPlan plan);
  PackOutcome run();

 private:
  bool staged() const { return plan_.settings.stageUsr8 && plan_.list.usr8Found; }
  const std::string& target() const { return plan_.settings.outputPath; }
  bool openPlace();
  bool writeList();
  std::string exclusions() const;
  std::string statedCommand() const;
  bool moveToTarget();
  PackOutcome finish(const runtime::ToolResult& run, const std::string& command);
  PackOutcome refuseToWrite();
  void reportFailure(const runtime::ToolResult& run, const std::string& command);
  void showFailedCommand();
  void logRemarks(const runtime::ToolResult& run);

  runtime::Services services_;
  PackPlan plan_;
  std::vector<PackedRoot> roots_;
  std::optional<ScratchFolder> place_;
  std::string file_;      ///< what tar writes
  std::string listText_;  ///< what stands behind the archive in the command
};

}  // namespace archive
