#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Caller.h"
#include "runtime/PermissionMode.h"

namespace perms {

/// What the dialog holds when a run begins.
struct PermissionChoice {
  bool automatic = true;  ///< the kind of each entry decides; `mode` then only counts without selection
  runtime::PermissionMode mode;  ///< of files; folders get its directory variant
  bool subdirectories = true;    ///< folders with all that they hold

  std::string text() const;  ///< for the log: "(750)", " automatically"
};

/// What is to get permissions: the selection as it was when the dialog opened, or all rows of the pane.
struct PermissionItems {
  std::vector<std::string> paths;  ///< full Windows paths, in list order
  bool selected = true;            ///< false: nothing was selected, `paths` are the rows
  std::string folder;              ///< the current folder, trailing backslash
  std::string label;               ///< what the main window says of the selection

  /// For the log: "3 items in C:\pkg\", or "C:\pkg\*".
  std::string target() const;
};

/// One item as it was found on disk, a link never.
struct FoundItem {
  std::string path;
  bool isFolder = false;
  bool isExecutable = false;  ///< for the terminal; asked only where the kind decides
};

/// Which entries one step reaches; links never.
enum class Reach {
  Item,         ///< the item alone
  Folders,      ///< the item and all folders below, by one `find`
  OtherFiles,   ///< all below that are no folders, by one `find`
  Tree,         ///< the item and all below
  EachFolder,   ///< the item and all folders below, one run each
  Executables,  ///< the files below that count as executables on the terminal, by list
};

/// What becomes of the text that a step's tool prints.
enum class Told {
  Examined,  ///< any text is a failure
  Shown,     ///< in a message, whatever it is
  Ignored,
};

struct PlanStep {
  Reach reach;
  std::optional<runtime::PermissionMode> mode;  ///< none: execute is added, as far as the umask allows
  Told told = Told::Examined;
};

/// The plan of a run: what is done with each item, in order. A run follows it, and what a run would change is
/// computed from it.
struct ItemPlan {
  std::string path;
  std::vector<PlanStep> steps;
};

bool decidesByKind(const ItemPlan& plan);  ///< it looks for executables below its item

ItemPlan planFor(const FoundItem& item, const PermissionChoice& choice, bool selected);

/// The command of a step for a path: whole, or for Reach::EachFolder and Reach::Executables its beginning, to
/// which paths are appended.
std::string commandOf(const PlanStep& step, const std::string& windowsPath);

/// One entry of a tree as it was before the run.
struct TreeEntry {
  std::string path;   ///< Windows form
  unsigned mode = 0;  ///< all twelve bits
  bool isFolder = false;
  bool isRegular = false;
  bool isItem = false;        ///< the item itself, not something below it
  bool closed = false;        ///< a folder that cannot be read or entered as it is
  bool isExecutable = false;  ///< for the terminal
  unsigned user = 0;
  unsigned group = 0;
  /// Device and inode of a file that has several names, zeros else.
  std::pair<unsigned long long, unsigned long long> file{};
};

bool reaches(const PlanStep& step, const TreeEntry& entry, const platform::Caller& caller);

/// The mode that a reached entry has after the step. A folder keeps its set-id bits when it is given three
/// digits (GNU chmod); the set-group-id bit goes where the caller is not of that group (Linux).
unsigned modeAfter(const PlanStep& step, const TreeEntry& entry, unsigned before,
                   const platform::Caller& caller);

/// "rwxr-xr-x", with "s", "S", "t" and "T" as ls prints them.
std::string modeLetters(unsigned mode);

}  // namespace perms
