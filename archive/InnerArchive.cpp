#include "archive/InnerArchive.h"

#include <algorithm>
#include <cerrno>

#include "archive/ExtractCommand.h"
#include "archive/ExtractGuard.h"
#include "archive/ListingJob.h"
#include "archive/ListingOutput.h"
#include "archive/NamesFile.h"
#include "archive/PackProblem.h"
#include "runtime/Slashes.h"

namespace archive {

using runtime::ArchiveKind;
using runtime::JobEnd;

namespace {

constexpr std::size_t longestReason = 4000;  ///< bytes; a box that holds more is taller than any screen

/// Unpacks one member into a scratch folder: its bytes below "contents", the name that tar reads beside it.
class MemberRun {
 public:
  MemberRun(const runtime::Services& services, const MemberOfArchive& member)
      : services_(services), member_(member) {}

  UnpackedMember run() {
    place_ = std::make_unique<ScratchFolder>(files(), services_.log, services_.api.GetTempDir());
    if (!*place_) return failed(noTemporaryFolder(files(), place_->systemError()));
    folder_ = place_->path() + "\\contents";
    if (files().createFolder(folder_) != 0 || !files().writeText(namesFile(), namesFileText({member_.name})))
      return failed(cannotWrite(files(), place_->path()));
    // No link that the archive brings along is there when this one member is extracted.
    if (!ExtractGuard(services_.system.drives, folder_).judge({member_.name}).empty())
      return {JobEnd::Refused, "Its name leads out of the folder into which it would be unpacked"};
    const runtime::ToolResult ran = runTool();
    if (services_.system.busy.stopRequested()) return {JobEnd::Stopped};
    return ran.good() ? found() : failed(reasonOf(ran));
  }

 private:
  const platform::Files& files() const { return services_.system.files; }
  std::string namesFile() const { return place_->path() + "\\names"; }
  static UnpackedMember failed(std::string problem) { return {JobEnd::Failed, std::move(problem)}; }

  runtime::ToolResult runTool() const {
    const bool ipk = member_.kind == ArchiveKind::Ipk;
    const std::string command =
        ipk ? arExtractCommand(member_.archivePath, {member_.name})
            : tarMemberCommand(member_.kind, member_.archivePath, folder_, namesFileOptions(namesFile()));
    return services_.api.RunCapture(services_.cygwin.cygwinBin(), command, folder_,
                                    runtime::mayChange({place_->path()}));
  }

  /// ar ends well where it lacks the member.
  UnpackedMember found() {
    std::string path = folder_ + '\\' + runtime::withBackslashes(member_.name);
    if (files().isLink(path) || !files().isRegularFile(path))
      return {JobEnd::Refused, "The archive has no file of that name"};
    return {JobEnd::Done, "", std::move(path), std::move(place_)};
  }

  std::string reasonOf(const runtime::ToolResult& ran) const {
    if (tellsOfFullDisk(ran.text) || files().writeProblem(place_->path()) == ENOSPC)
      return diskFull(services_.api.GetTempDir());
    if (ran.ended() && !ran.text.empty()) return ran.text.substr(0, longestReason);
    return howItEnded(ran, member_.kind == ArchiveKind::Ipk ? "ar" : "tar");
  }

  runtime::Services services_;
  const MemberOfArchive& member_;
  std::unique_ptr<ScratchFolder> place_;
  std::string folder_;
};

}  // namespace

bool isInnerArchive(const ArchiveTree& tree, NodeId node) {
  if (tree.childCount(node) > 0 || !runtime::archiveKind(tree.memberPath(node))) return false;
  const auto entry = tree.entry(node);
  return !entry || entry->mode.front() == '-';
}

UnpackedMember unpackMember(const runtime::Services& services, const MemberOfArchive& member) {
  return MemberRun(services, member).run();
}

UnpackedMember InnerArchiveJob::run() {
  const CheckedArchive checked = checkArchive(services_, archivePath_, "");
  if (!checked.kind || !toolFound(services_, *checked.kind)) return {JobEnd::Refused};
  UnpackedMember made = unpackMember(services_, {*checked.kind, archivePath_, name_});
  if (made.end == JobEnd::Stopped)
    services_.log.append(" Stopped: opening " + name_);
  else if (made.end != JobEnd::Done)
    tellListingProblem(services_.user, "Unable to open " + name_ + ":\r\n" + made.problem);
  return made;
}

}  // namespace archive
