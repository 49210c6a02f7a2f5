#include "archive/ArchiveTree.h"

#include <algorithm>

#include "platform/HeldName.h"

namespace archive {
namespace {

std::string composeTag(const ArchiveEntry& fields) {
  std::string tag = "Size:                 " + std::string(fields.size) + " bytes\r";
  tag += "Modified:          " + std::string(fields.dateTime) + '\r';
  tag += "Permissions:     " + std::string(fields.mode) + '\r';
  tag += "Owner/Group:  " + platform::holdName(fields.owner);
  const auto target = splitLinkText(fields).target;
  if (target && fields.path.find('/') != std::string_view::npos)
    tag += "\rShortcut:          " + heldName(*target);
  return tag;
}

/// A node without a text of its own is no member.
void contribute(const ArchiveTree& tree, NodeId node, std::vector<std::string>& list) {
  if (!tree.text(node).empty()) {
    list.push_back(tree.memberPath(node));
    return;
  }
  for (std::size_t i = 0; i < tree.childCount(node); ++i) contribute(tree, tree.child(node, i), list);
}

}  // namespace

std::optional<ArchiveEntry> ArchiveTree::entry(NodeId node) const {
  if (!verbose_) return std::nullopt;
  const std::string_view text = std::string_view(listing_).substr(nodes_[node].line);
  return parseListingLine(text.substr(0, text.find('\n')));
}

std::string ArchiveTree::tag(NodeId node) const {
  if (!verbose_) return node == packageSize_.first ? packageSize_.second : "";
  const auto fields = entry(node);
  return fields ? composeTag(*fields) : "";
}

std::string ArchiveTree::memberPath(NodeId node) const {
  std::vector<std::string_view> names;
  for (NodeId at = node; at != 0; at = nodes_[at].parent)
    names.push_back(std::string_view(nodes_[at].text).substr(0, nodes_[at].nameLength));
  std::string path;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    if (name != names.rbegin()) path += '/';
    path += *name;
  }
  return path;
}

void ArchiveTree::setChecked(NodeId node, bool state) {
  nodes_[node].checked = state;
  CheckChildNodes(node, state);
  UncheckParentNodes(node, state);
}

void ArchiveTree::setAllChecked(bool state) {
  for (TreeNode& node : nodes_) {
    node.checked = state;
    node.partlySelected = false;
  }
}

void ArchiveTree::CheckChildNodes(NodeId node, bool state) {
  std::vector<NodeId> open = {node};
  while (!open.empty()) {
    TreeNode& at = nodes_[open.back()];
    open.pop_back();
    at.partlySelected = at.partlySelected && at.childCount == 0;
    for (std::uint32_t i = 0; i < at.childCount; ++i) {
      open.push_back(children_[at.firstChild + i]);
      nodes_[open.back()].checked = state;
    }
  }
}

void ArchiveTree::UncheckParentNodes(NodeId node, bool state) {
  for (NodeId at = nodes_[node].parent; at != 0; at = nodes_[at].parent) {
    if (nodes_[at].checked == state) continue;
    nodes_[at].partlySelected = true;
    nodes_[at].checked = false;
  }
}

void CollectCheckedPaths(const ArchiveTree& tree, NodeId node, std::vector<std::string>& list) {
  for (std::size_t i = 0; i < tree.childCount(node); ++i) {
    const NodeId child = tree.child(node, i);
    if (tree.checked(child))
      contribute(tree, child, list);
    else
      CollectCheckedPaths(tree, child, list);
  }
}

std::vector<Contribution> contributions(const ArchiveTree& tree, bool all) {
  std::vector<Contribution> found;
  for (std::size_t i = 0; i < tree.childCount(0); ++i) {
    const NodeId node = tree.child(0, i);
    Contribution one{node, {}};
    if (all || tree.checked(node))
      contribute(tree, node, one.members);
    else
      CollectCheckedPaths(tree, node, one.members);
    if (!one.members.empty()) found.push_back(std::move(one));
  }
  return found;
}

}  // namespace archive
