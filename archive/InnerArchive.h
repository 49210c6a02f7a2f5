#pragma once

#include <memory>
#include <string>

#include "archive/ArchiveTree.h"
#include "archive/ScratchFolder.h"
#include "runtime/ArchiveKind.h"
#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace archive {

/// Whether a node is a file and, by its name, an archive that can be listed.
bool isInnerArchive(const ArchiveTree& tree, NodeId node);

struct MemberOfArchive {
  runtime::ArchiveKind kind;
  std::string archivePath;
  std::string name;  ///< ArchiveTree::memberPath
};

/// A member that stands on disk in a scratch folder of its own.
struct UnpackedMember {
  runtime::JobEnd end = runtime::JobEnd::Failed;
  std::string problem = {};                   ///< why it is not there, in words; of a stop there are none
  std::string path = {};                      ///< a regular file
  std::unique_ptr<ScratchFolder> place = {};  ///< which goes with this object
};

/// Unpacks it as a step of a job; nobody is told anything. A member that an extraction would leave out, a
/// link and whatever else is no file with bytes of its own are refused.
UnpackedMember unpackMember(const runtime::Services& services, const MemberOfArchive& member);

/// Unpacks a member, so that it can be opened like any other archive: with every check and message.
class InnerArchiveJob {
 public:
  InnerArchiveJob(const runtime::Services& services, std::string archivePath, std::string name)
      : services_(services), archivePath_(std::move(archivePath)), name_(std::move(name)) {}
  UnpackedMember run();

 private:
  runtime::Services services_;
  std::string archivePath_;
  std::string name_;
};

}  // namespace archive
