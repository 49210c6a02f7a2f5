#include "perms/PermissionPlan.h"

#include <algorithm>

#include "runtime/modAPI.h"

namespace perms {
namespace {

using runtime::executableMode;
using runtime::PermissionMode;
using runtime::plainFileMode;

constexpr unsigned setUser = 04000;
constexpr unsigned setGroup = 02000;
constexpr unsigned sticky = 01000;
constexpr unsigned execute = 0111;
constexpr unsigned ownerExecute = 0100;

unsigned bitsOf(const PermissionMode& mode) {
  return static_cast<unsigned>(mode.owner << 6 | mode.group << 3 | mode.everyone);
}

std::vector<PlanStep> treeSteps(const PermissionChoice& choice) {
  if (choice.automatic)
    return {{Reach::Folders, executableMode},
            {Reach::OtherFiles, plainFileMode},
            {Reach::Executables, executableMode}};
  return {{Reach::Item, executableMode, Told::Shown},
          {Reach::Folders, choice.mode.directoryVariant()},
          {Reach::OtherFiles, choice.mode}};
}

std::vector<PlanStep> itemSteps(const FoundItem& item, const PermissionMode& mode) {
  std::vector<PlanStep> steps = {{Reach::Item, mode}};
  if (item.isFolder) steps.push_back({Reach::Item, std::nullopt, Told::Ignored});
  return steps;
}

}  // namespace

std::string PermissionChoice::text() const { return automatic ? " automatically" : '(' + mode.text() + ')'; }

std::string PermissionItems::target() const {
  return selected ? std::to_string(paths.size()) + " items in " + folder : folder + '*';
}

ItemPlan planFor(const FoundItem& item, const PermissionChoice& choice, bool selected) {
  const bool wholeTree = item.isFolder && choice.subdirectories;
  if (!selected && wholeTree)
    return {item.path, {{Reach::Tree, choice.mode}, {Reach::EachFolder, std::nullopt, Told::Ignored}}};
  if (!selected) return {item.path, itemSteps(item, choice.mode)};
  if (wholeTree) return {item.path, treeSteps(choice)};
  const PermissionMode byKind = item.isExecutable ? executableMode : plainFileMode;
  return {item.path, itemSteps(item, choice.automatic ? byKind : choice.mode)};
}

bool decidesByKind(const ItemPlan& plan) {
  return std::any_of(plan.steps.begin(), plan.steps.end(),
                     [](const PlanStep& step) { return step.reach == Reach::Executables; });
}

std::string commandOf(const PlanStep& step, const std::string& windowsPath) {
  const std::string path = runtime::ToCygwinPath(windowsPath);
  const std::string mode = step.mode ? step.mode->text() : "+x";
  const auto find = [&](const char* which) {
    return "find " + path + " ! -type l " + which + " -exec chmod.exe " + mode + " {} +";
  };
  switch (step.reach) {
    case Reach::Item:
      return "chmod.exe " + mode + ' ' + path;
    case Reach::Tree:
      return "chmod.exe -R " + mode + ' ' + path;
    case Reach::Folders:
      return find("-type d");
    case Reach::OtherFiles:
      return find("! -type d");
    default:
      return "chmod.exe " + mode + ' ';
  }
}

bool reaches(const PlanStep& step, const TreeEntry& entry, const platform::Caller& caller) {
  switch (step.reach) {
    case Reach::Item:
      return entry.isItem;
    case Reach::Folders:
    case Reach::EachFolder:
      return entry.isFolder;
    case Reach::OtherFiles:
      return !entry.isFolder;
    case Reach::Executables:
      return entry.isExecutable && !entry.isFolder;
    case Reach::Tree:  // the item comes first: without its execute bit only root gets below
      return entry.isItem || caller.root || (bitsOf(*step.mode) & ownerExecute) != 0;
  }
  return false;
}

unsigned modeAfter(const PlanStep& step, const TreeEntry& entry, unsigned before,
                   const platform::Caller& caller) {
  if (!caller.root && caller.user != entry.user) return before;
  const unsigned kept = entry.isFolder ? before & (setUser | setGroup) : 0;
  const unsigned after = step.mode ? kept | bitsOf(*step.mode) : before | (execute & ~caller.umask);
  const auto& groups = caller.groups;
  const bool ofGroup = caller.root || std::find(groups.begin(), groups.end(), entry.group) != groups.end();
  return ofGroup ? after : after & ~setGroup;
}

std::string modeLetters(unsigned mode) {
  std::string letters = "rwxrwxrwx";
  for (std::size_t i = 0; i < letters.size(); ++i)
    if ((mode >> (letters.size() - 1 - i) & 1U) == 0) letters[i] = '-';
  const auto mark = [&](unsigned bit, std::size_t place, char both, char alone) {
    if ((mode & bit) != 0) letters[place] = letters[place] == 'x' ? both : alone;
  };
  mark(setUser, 2, 's', 'S');
  mark(setGroup, 5, 's', 'S');
  mark(sticky, 8, 't', 'T');
  return letters;
}

}  // namespace perms
