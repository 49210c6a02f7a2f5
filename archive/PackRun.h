#pragma once

#include <optional>
#include <string>
#include <vector>

#include "archive/PackCommand.h"
#include "archive/PackedRoots.h"
#include "archive/ScratchFolder.h"
#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace archive {

/// All that is settled before tar starts.
struct PackPlan {
  PackSettings settings;  ///< with the whole output path
  runtime::ArchiveKind kind;
  char mode;  ///< 'c', or 'r' to append
  NameList list;
  bool insideUsr8;  ///< the current folder is usr8 itself
  bool replaces;    ///< something stood at the output path, and may be replaced; else nothing is
};

/// The staging and one run of tar: it writes a file of its own inside nothing that is packed, which takes the
/// output's place only when it is good. A run that fails or is stopped changes nothing. Failures are told;
/// that it was stopped is for the caller to say.
class PackRun {
 public:
  PackRun(const runtime::Services& services, PackPlan plan);
  runtime::JobEnd run();

 private:
  bool staged() const { return plan_.settings.stageUsr8 && plan_.list.usr8Found; }
  bool stopWanted() const { return services_.system.busy.stopRequested(); }
  const std::string& target() const { return plan_.settings.outputPath; }
  std::vector<std::string> leftOut(const runtime::ToolResult& run) const;
  bool isName(std::string_view line) const;
  runtime::JobEnd refuse(const std::string& problem);
  runtime::JobEnd fail(const std::string& problem);
  bool settleTime();
  bool openPlace();
  bool copyEarlier();
  bool writeList();
  std::vector<std::string> ownThings() const;
  std::string exclusions() const;
  std::string statedCommand() const;
  runtime::VisibleRun view() const;
  runtime::JobEnd finish(const runtime::ToolResult& run, const std::string& command);
  int moveToTarget();
  runtime::JobEnd notMoved(int systemError);
  void reportFailure(const runtime::ToolResult& run, const std::string& command);
  void showFailedCommand();
  void logRemarks(const runtime::ToolResult& run);

  runtime::Services services_;
  PackPlan plan_;
  std::vector<PackedRoot> roots_;
  std::string end_;  ///< what is written: the output, or where it leads as a link
  std::optional<ScratchFolder> place_;
  std::string file_;      ///< what tar writes
  std::string listText_;  ///< what stands behind the archive in the command
  std::string problem_;   ///< why the last step failed
};

}  // namespace archive
