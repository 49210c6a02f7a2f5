#include "archive/TakeOutJob.h"

#include <algorithm>

#include "archive/ExtractJob.h"
#include "archive/PackProblem.h"
#include "runtime/ShowLogged.h"
#include "runtime/Slashes.h"

namespace archive {
namespace {

using runtime::JobEnd;

/// The tree is there, and nothing stands in a new folder.
class NothingToAsk : public OverwriteAsker, public ListingProgress {
 public:
  OverwriteAnswer ask(const OverwriteQuestion& /*question*/) override { return OverwriteAnswer::Cancel; }
  void showPercent(float /*percent*/) override {}
};

/// One that lies below another comes with that.
std::vector<NodeId> outermost(const ArchiveTree& tree, std::vector<NodeId> entries) {
  const std::vector<NodeId> all = entries;
  std::erase_if(entries, [&](NodeId entry) {
    for (NodeId at = tree.parent(entry); at != 0; at = tree.parent(at))
      if (std::ranges::find(all, at) != all.end()) return true;
    return false;
  });
  return entries;
}

/// Absolute names have a folder in common that has no name and is none.
void addNamed(const ArchiveTree& tree, NodeId entry, std::vector<NodeId>& named) {
  if (!tree.text(entry).empty()) return named.push_back(entry);
  for (std::size_t i = 0; i < tree.childCount(entry); ++i) addNamed(tree, tree.child(entry, i), named);
}

void tick(ArchiveTree& ticked, const ArchiveTree& tree, NodeId entry) {
  if (!tree.partlySelected(entry)) return ticked.setChecked(entry, true);
  for (std::size_t i = 0; i < tree.childCount(entry); ++i) {
    const NodeId child = tree.child(entry, i);
    if (tree.checked(child) || tree.partlySelected(child)) tick(ticked, tree, child);
  }
}

}  // namespace

TakeOutJob::TakeOutJob(const runtime::Services& services, std::string archivePath, std::string shownAs,
                       const ArchiveTree& tree, const std::vector<NodeId>& entries)
    : services_(services), archivePath_(std::move(archivePath)), shownAs_(std::move(shownAs)), ticked_(tree) {
  for (const NodeId entry : outermost(tree, entries)) addNamed(tree, entry, entries_);
  ticked_.setAllChecked(false);
  for (const NodeId entry : entries) tick(ticked_, tree, entry);
}

std::vector<std::string> TakeOutJob::members() const {
  std::vector<std::string> all;
  for (const Contribution& one : contributions(ticked_, false))
    all.insert(all.end(), one.members.begin(), one.members.end());
  return all;
}

TakenOut TakeOutJob::run() {
  const platform::Files& files = services_.system.files;
  auto place = std::make_unique<ScratchFolder>(files, services_.log, services_.api.GetTempDir());
  const std::string folder = place->path() + "\\contents";
  if (!*place || files.createFolder(folder) != 0) {
    services_.user.message(
        *place ? cannotWrite(files, place->path()) : noTemporaryFolder(files, place->systemError()),
        runtime::Buttons::Ok, runtime::Icon::Critical, "Unable To Extract");
    return {JobEnd::Failed};
  }
  TakenOut out{unpack(folder)};
  if (out.end != JobEnd::Done) return out;
  out.paths = pathsIn(folder);
  out.place = std::move(place);
  return out;
}

JobEnd TakeOutJob::unpack(const std::string& folder) {
  ExtractRequest request{Extract::Selected, archivePath_, folder, ticked_, shownAs_};
  NothingToAsk nothing;
  const std::size_t logged = services_.log.size();
  const Extraction made = ExtractJob(services_, nothing, nothing, std::move(request)).run();
  if (made.logTells) runtime::showLogged(services_.user, services_.log, logged);
  return made.end;
}

std::vector<std::string> TakeOutJob::pathsIn(const std::string& folder) const {
  std::vector<std::string> paths;
  for (const NodeId entry : entries_) {
    const std::string member = ticked_.memberPath(entry);
    const std::size_t begin = std::min(member.find_first_not_of('/'), member.size());
    paths.push_back(folder + '\\' + runtime::withBackslashes(member.substr(begin)));
  }
  return paths;
}

}  // namespace archive
