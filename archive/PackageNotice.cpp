#include "archive/PackageNotice.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "archive/ExtractCommand.h"
#include "archive/InnerArchive.h"
#include "archive/PackageControl.h"

namespace archive {
namespace {

using runtime::ArchiveKind;

/// Of the archive that holds the control file; nobody asked to have more than that unpacked.
constexpr std::uint64_t largestArchive = 1024 * 1024;

constexpr std::array<std::string_view, 3> archiveNames = {"control.tar.gz", "control.tgz", "control.tar"};

bool fits(const ArchiveEntry& entry) {
  return byteCount(entry).value_or(largestArchive + 1) <= largestArchive;
}

/// 0: there is none.
NodeId controlArchive(const ArchiveTree& tree) {
  for (std::size_t i = 0; i < tree.childCount(0); ++i) {
    const NodeId node = tree.child(0, i);
    std::string name = tree.memberPath(node);
    if (name.starts_with("./")) name.erase(0, 2);
    const bool isOne = std::find(archiveNames.begin(), archiveNames.end(), name) != archiveNames.end();
    const auto entry = tree.entry(node);
    if (isOne && isInnerArchive(tree, node) && (!entry || fits(*entry))) return node;
  }
  return 0;
}

}  // namespace

void logPackage(const runtime::Services& services, ArchiveKind kind, const std::string& path,
                const ArchiveTree& tree) {
  const NodeId node = controlArchive(tree);
  if (node == 0) return;
  const UnpackedMember inner = unpackMember(services, {kind, path, tree.memberPath(node)});
  if (inner.end != runtime::JobEnd::Done) return;
  if (services.system.files.fileSize(inner.path).value_or(largestArchive + 1) > largestArchive) return;
  const std::string& tools = services.cygwin.cygwinBin();
  const ArchiveKind innerKind = runtime::archiveKind(inner.path).value_or(ArchiveKind::Tar);
  const auto listing =
      services.api.RunCapture(tools, listCommand(innerKind, inner.path), {}, listingManner());
  const ControlMembers members = controlMembers(listing.text);
  if (!listing.good() || members.control.empty()) return;
  const auto text = services.api.RunCapture(tools, contentCommand(innerKind, inner.path, members.control), {},
                                            listingManner());
  const auto control = parsePackageControl(text.text);
  if (text.good() && control) services.log.append(packageLine(*control, members.scripts));
}

}  // namespace archive
