#include "archive/ArchiveTreeBuilder.h"

#include <algorithm>

#include "archive/ListingLine.h"
#include "platform/Files.h"
#include "platform/HeldName.h"
#include "runtime/ImageKeys.h"

namespace archive {
namespace {

constexpr std::string_view packageSizeMember = "packageSize";

std::string withoutLineFeeds(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
  return text;
}

}  // namespace

ArchiveTreeBuilder::ArchiveTreeBuilder(runtime::ArchiveKind kind, std::string listing,
                                       std::function<std::string()> packageSize)
    : packageSize_(std::move(packageSize)),
      lineCount_(static_cast<std::size_t>(std::count(listing.begin(), listing.end(), '\n'))),
      folderImage_(runtime::ImageIndexForKey("fldr")),
      shortcutImage_(runtime::ImageIndexForKey("shortcut")) {
  tree_.verbose_ = kind != runtime::ArchiveKind::Ipk;
  tree_.listing_ = std::move(listing);
  // Folders without a line of their own need room, too: a list that grows doubles what a large archive takes.
  const std::size_t nodes = lineCount_ + lineCount_ / 8 + 1;
  tree_.nodes_.reserve(nodes);
  byText_.reserve(lineCount_);
  order_.reserve(nodes);
}

bool ArchiveTreeBuilder::addNextLine() {
  const std::size_t end = tree_.listing_.find('\n', position_);
  if (end == std::string::npos) return false;
  line_ = position_;
  position_ = end + 1;
  const std::string_view line = std::string_view(tree_.listing_).substr(line_, end - line_);
  if (tree_.verbose_)
    addTarLine(line);
  else if (!line.empty() && !isArRemark(line))
    addMember(line);
  return true;
}

void ArchiveTreeBuilder::addMember(std::string_view line) {
  const std::size_t made = tree_.nodeCount();
  if (line.find('/') == line.npos)
    addAtTop(platform::holdName(line), imageOf(line));
  else
    place(line, false);
  if (line == packageSizeMember && tree_.nodeCount() > made && packageSize_)
    tree_.packageSize_ = {static_cast<NodeId>(tree_.nodeCount()),
                          "Package Size: " + withoutLineFeeds(packageSize_()) + " bytes"};
}

void ArchiveTreeBuilder::addTarLine(std::string_view line) {
  const auto entry = parseListingLine(line);
  if (!entry || entry->path.empty()) return;
  const EntryPath path = splitLinkText(*entry);
  if (entry->path.find('/') != std::string_view::npos) {
    place(path.name, path.target.has_value());
    return;
  }
  std::string text = heldName(entry->path);
  const int image = imageOf(text);
  const NodeId node = addAtTop(std::move(text), image);
  tree_.nodes_[node].nameLength = static_cast<std::uint32_t>(heldName(path.name).size());
}

/// `path` is as printed; every component gets a node, those that only the way needs too. Most lines stand in
/// the folder of the line before.
void ArchiveTreeBuilder::place(std::string_view path, bool isLink) {
  const bool endsInFolder = path.ends_with('/');
  if (endsInFolder) path.remove_suffix(1);
  const std::string_view folder = path.substr(0, path.rfind('/') + 1);
  const bool known = !folder.empty() && folder == folder_.first;
  if (known) path.remove_prefix(folder.size());
  NodeId parent = known ? folder_.second : 0;
  std::string prefix;
  for (bool last = false; !last;) {
    const std::size_t slash = path.find('/');
    last = slash == path.npos;
    if (last && prefix.empty()) folder_ = {folder, parent};
    const std::string_view component = path.substr(0, slash);
    path.remove_prefix(last ? path.size() : slash + 1);
    if (component == "." || component == "..") {
      prefix.append(component).append("/");
      continue;
    }
    std::string text = prefix.empty() ? heldName(component) : prefix + heldName(component);
    prefix.clear();
    if (const NodeId found = byText_.find(parent, text); found != 0) {
      parent = found;
      continue;
    }
    const bool isFolder = !last || endsInFolder;
    const int image = isFolder ? folderImage_ : isLink ? shortcutImage_ : imageOf(text);
    parent = AddArchiveNode(std::move(text), parent, isFolder, image);
    byText_.put(parent);
  }
}

NodeId ArchiveTreeBuilder::AddArchiveNode(std::string text, NodeId parent, bool isFolder, int image) {
  TreeNode made;
  made.nameLength = static_cast<std::uint32_t>(text.size());
  made.text = std::move(text);
  made.line = line_;
  made.parent = parent;
  made.image = static_cast<std::uint8_t>(image);
  const auto node = static_cast<NodeId>(tree_.nodes_.size());
  tree_.nodes_.push_back(std::move(made));
  order_.insert(parent, node, isFolder);
  if (++tree_.nodes_[parent].childCount == 1) order_.gotFirstChild(parent);
  return node;
}

/// Not looked up before: there may be such a node. A look-up finds the first of siblings that have the same
/// text.
NodeId ArchiveTreeBuilder::addAtTop(std::string text, int image) {
  const NodeId node = AddArchiveNode(std::move(text), 0, false, image);
  const NodeId first = byText_.find(0, tree_.text(node));
  if (first != 0 && !order_.standsBefore(node, first)) return node;
  byText_.put(node);
  folder_ = {};
  return node;
}

int ArchiveTreeBuilder::imageOf(std::string_view text) {
  const std::string extension = platform::extensionOf(text);
  const auto known = images_.find(extension);
  if (known != images_.end()) return known->second;
  return images_.emplace(extension, runtime::ImageIndexForKey(extension)).first->second;
}

ArchiveTree ArchiveTreeBuilder::finish() {
  tree_.children_.reserve(tree_.nodeCount());
  for (NodeId node = 0; node < tree_.nodes_.size(); ++node) {
    const std::size_t first = tree_.children_.size();
    tree_.nodes_[node].firstChild = static_cast<std::uint32_t>(first);
    order_.appendChildren(node, tree_.children_);
    for (std::size_t i = first; i < tree_.children_.size(); ++i)
      tree_.nodes_[tree_.children_[i]].row = static_cast<std::uint32_t>(i - first);
  }
  return std::move(tree_);
}

}  // namespace archive
