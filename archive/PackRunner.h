#pragma once

#include <functional>
#include <string>

#include "archive/PackCommand.h"
#include "runtime/Services.h"

namespace archive {

enum class PackOutcome { Created, UnknownExtension, Refused, Failed };

/// The output path that a run writes: a name without a folder lies in the folder that is shown.
std::string wholeOutputPath(const PackSettings& settings, const PackSelection& selection);

/// Creates an archive: every check, question and message of the archive dialog's "Create Tar", the staging of
/// usr8, the tar run and its exit code. The dialog and the batch form both call it.
class PackRunner {
 public:
  explicit PackRunner(const runtime::Services& services) : services_(services) {}

  /// The name list of the selection (what stands in folders is looked up on disk, sorted by bytes).
  NameList nameList(const PackSettings& settings, const PackSelection& selection) const;

  /// `useNewFile` is called when an append is turned into a new file after the user agreed.
  PackOutcome create(PackSettings settings, const PackSelection& selection,
                     const std::function<void()>& useNewFile = {});

  /// The selection must still exist: the stated message and false when something is gone.
  bool selectionExists(const PackSelection& selection) const;

 private:
  runtime::Services services_;
};

}  // namespace archive
