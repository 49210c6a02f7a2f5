#pragma once

#include <memory>
#include <string>
#include <vector>

#include "archive/ArchiveTree.h"
#include "archive/ScratchFolder.h"
#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace archive {

/// Members that stand on disk in a scratch folder of their own, to be copied from there.
struct TakenOut {
  runtime::JobEnd end = runtime::JobEnd::Refused;
  std::vector<std::string> paths = {};        ///< of the entries that were asked for; all or none
  std::unique_ptr<ScratchFolder> place = {};  ///< which goes with this object
};

/// Unpacks entries of an archive with all that they hold; of a folder that is partly ticked, what is ticked.
/// Guarded and told like any extraction; one that leaves something out gives nothing.
class TakeOutJob {
 public:
  /// `shownAs` is what the log calls the archive.
  TakeOutJob(const runtime::Services& services, std::string archivePath, std::string shownAs,
             const ArchiveTree& tree, const std::vector<NodeId>& entries);
  /// What is unpacked; a folder stands for all that it holds.
  std::vector<std::string> members() const;
  TakenOut run();

 private:
  runtime::JobEnd unpack(const std::string& folder);
  std::vector<std::string> pathsIn(const std::string& folder) const;

  runtime::Services services_;
  std::string archivePath_;
  std::string shownAs_;
  ArchiveTree ticked_;           // nothing else
  std::vector<NodeId> entries_;  // none below another
};

}  // namespace archive
