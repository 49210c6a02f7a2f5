#include "perms/TreeModes.h"

#include <charconv>

#include "platform/HeldName.h"
#include "runtime/PathBatches.h"
#include "runtime/Stepper.h"

namespace perms {
namespace {

constexpr std::string_view speaker = "find: ";
constexpr std::size_t betweenQuestions = 256;  // records

/// The number at the beginning of a text, which it and one blank leave.
template <typename Number>
Number cutNumber(std::string_view& text, int base = 10) {
  Number number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number, base).ptr;
  text.remove_prefix(std::min(text.size(), static_cast<std::size_t>(end - text.data()) + 1));
  return number;
}

std::string_view withoutComplaints(std::string_view record) {
  while (record.starts_with(speaker))
    record.remove_prefix(std::min(record.size(), std::min(record.find('\n'), record.size() - 1) + 1));
  return record;
}

/// Only a file with several names is known by its inode.
void readPlace(TreeEntry& entry, std::string_view& record) {
  const bool severalNames = cutNumber<unsigned>(record) > 1;
  const auto device = cutNumber<unsigned long long>(record);
  const auto inode = cutNumber<unsigned long long>(record);
  if (severalNames && !entry.isFolder) entry.file = {device, inode};
}

}  // namespace

std::string treeModesCommand(const std::string& batch, bool below) {
  return "find " + batch + (below ? "" : "-maxdepth 0 ") +
         "! -type l ( -type d ! ( -readable -executable ) -printf ! -o -true ) "
         "-printf \"%d %y %m %U %G %n %D %i %p\\0\"";
}

TreeModesReader::TreeModesReader(const platform::DriveTable& drives, const std::vector<std::string>& items)
    : drives_(drives), items_(items), trees_(items.size()) {}

void TreeModesReader::read(std::string_view output, const std::function<bool()>& goesOn) {
  for (std::size_t records = 0; !output.empty(); ++records) {
    const std::size_t end = output.find('\0');
    if (end == output.npos) return;
    readRecord(withoutComplaints(output.substr(0, end)));
    output.remove_prefix(end + 1);
    if (records % betweenQuestions == 0 && !goesOn()) return;
  }
}

void TreeModesReader::readRecord(std::string_view record) {
  TreeEntry entry;
  entry.closed = record.starts_with('!');
  if (entry.closed) record.remove_prefix(1);
  entry.isItem = cutNumber<unsigned>(record) == 0;
  entry.isFolder = record.starts_with('d');
  entry.isRegular = record.starts_with('f');
  record.remove_prefix(std::min<std::size_t>(record.size(), 2));
  entry.mode = cutNumber<unsigned>(record, 8);
  entry.user = cutNumber<unsigned>(record);
  entry.group = cutNumber<unsigned>(record);
  readPlace(entry, record);
  if (entry.isItem && !beginItem(record)) return;
  if (hostLength_ == 0) return;
  entry.path = pathBelow(record);
  trees_[next_ - 1].push_back(std::move(entry));
}

/// Items that have vanished have no record.
bool TreeModesReader::beginItem(std::string_view hostPath) {
  while (next_ < items_.size() && drives_.toHost(items_[next_]) != hostPath) ++next_;
  if (next_ == items_.size()) return false;
  hostLength_ = hostPath.size();
  hostFolder_ = hostPath;
  folder_ = items_[next_++];
  return true;
}

/// The item's own path, and the names below it in held form. Neighbours share their folder.
std::string TreeModesReader::pathBelow(std::string_view hostPath) {
  if (hostPath.size() <= hostLength_) return items_[next_ - 1];
  const std::size_t slash = hostPath.rfind('/');
  if (const std::string_view folder = hostPath.substr(0, slash); folder != hostFolder_) {
    std::string inner = pathBelow(folder);
    hostFolder_ = folder;
    folder_ = std::move(inner);
  }
  return folder_ + '\\' + platform::holdName(hostPath.substr(slash + 1));
}

std::optional<std::vector<ItemTree>> treesOf(const runtime::Services& services,
                                             const std::vector<std::string>& items, bool below) {
  TreeModesReader reader(services.system.drives, items);
  const auto goesOn = runtime::stepper(services);
  for (const std::string& batch : runtime::pathBatches(items, runtime::asManyAsFit)) {
    const runtime::ToolResult run = services.api.RunCapture(
        services.cygwin.cygwinBin(), treeModesCommand(batch, below), {}, runtime::mayChangeForAll({}));
    if (!run.ended()) return std::nullopt;  // what it complains of ends it badly, and is no reason
    reader.read(run.text, goesOn);
  }
  return goesOn() ? std::optional(reader.takeTrees()) : std::nullopt;
}

}  // namespace perms
