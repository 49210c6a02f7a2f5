#pragma once

#include <optional>
#include <string>
#include <vector>

#include "perms/PermissionUndo.h"
#include "perms/TreeModes.h"

namespace perms {

/// Whether a tool stands in the tools' folder; if not, a message says so.
bool permissionToolFound(const runtime::Services& services, const char* tool);

/// Asked where nothing is selected. True: the whole folder is meant.
bool agreesToWholeFolder(runtime::UserInterface& user, const std::string& folder);

/// The items that a run or its preview works on, without the links among them; with what decides their plans.
struct PlannedItems {
  std::vector<std::string> paths;
  std::vector<ItemPlan> plans;  ///< one a path
  std::vector<std::string> links;
};
PlannedItems planItems(const platform::Files& files, const PermissionItems& items,
                       const PermissionChoice& choice);

/// What a run would change, without changing anything. Nothing where it was stopped or `find` could not be
/// run to its end.
std::optional<ModeChanges> previewChanges(const runtime::Services& services, const PermissionItems& items,
                                          const PermissionChoice& choice);

struct PermissionResult {
  runtime::JobEnd end = runtime::JobEnd::Done;
  PermissionUndo undo;
};

/// Gives the items the chosen permissions, item after item, as their plans say. The first failure of a
/// selected item ends it; rows of a pane without a selection are all tried. Every failure is told, and the
/// run ends in one line of the log.
class PermissionJob {
 public:
  PermissionJob(const runtime::Services& services, PermissionItems items, PermissionChoice choice);
  PermissionResult run();

 private:
  enum class Went { On, NotStarted, Stopped };

  runtime::JobEnd runItems();
  runtime::JobEnd runItem(std::size_t item);
  Went runSteps(std::size_t item, std::string& said);
  Went runStep(const PlanStep& step, std::size_t item, std::string& said);
  Went runTool(const std::string& command, std::string& said) const;
  Went setDirExecute(const PlanStep& step, const std::string& folder, bool recurse) const;
  Went runExecutables(const PlanStep& step, std::size_t item, std::string& said);
  Went lookIntoOpened(ItemTree& tree) const;
  void tell(const std::string& text) const;
  void logEnd(runtime::JobEnd end) const;
  PermissionUndo takeUndo(bool whole);

  runtime::Services services_;
  PermissionItems items_;
  PermissionChoice choice_;
  PlannedItems planned_;
  std::vector<ItemTree> trees_;
  std::size_t begun_ = 0;  ///< items
};

}  // namespace perms
