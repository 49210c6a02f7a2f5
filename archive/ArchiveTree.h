#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/ListingLine.h"
#include "archive/TreeNode.h"

namespace archive {

/// An archive's contents as they were listed. The shape is fixed; check marks and images change. Texts are in
/// inner form. It keeps the listing: what a node's properties say is read from it on demand.
class ArchiveTree {
 public:
  ArchiveTree() = default;

  std::size_t nodeCount() const { return nodes_.size() - 1; }
  NodeId child(NodeId parent, std::size_t row) const { return children_[nodes_[parent].firstChild + row]; }
  std::size_t childCount(NodeId parent) const { return nodes_[parent].childCount; }
  NodeId parent(NodeId node) const { return nodes_[node].parent; }
  std::size_t row(NodeId node) const { return nodes_[node].row; }
  const std::string& text(NodeId node) const { return nodes_[node].text; }
  int image(NodeId node) const { return nodes_[node].image; }
  void setImage(NodeId node, int image) { nodes_[node].image = static_cast<std::uint8_t>(image); }

  /// The fields of the line that made the node; they view the tree. nullopt for an ipk member.
  std::optional<ArchiveEntry> entry(NodeId node) const;
  /// The properties text: lines separated by CR; empty for an ipk member.
  std::string tag(NodeId node) const;
  /// The member's path in the archive, "/" between its components.
  std::string memberPath(NodeId node) const;

  bool checked(NodeId node) const { return nodes_[node].checked; }
  /// The mark of a folder of which a part is selected.
  bool partlySelected(NodeId node) const { return nodes_[node].partlySelected; }
  /// What a click on a check box does: all below follow; folders above that were otherwise are unchecked and
  /// marked.
  void setChecked(NodeId node, bool state);
  void setAllChecked(bool state);  ///< "Select All" and "Select None"

  /// What the tool printed.
  const std::string& listing() const { return listing_; }

 private:
  friend class ArchiveTreeBuilder;
  void CheckChildNodes(NodeId node, bool state);
  void UncheckParentNodes(NodeId node, bool state);

  bool verbose_ = true;  ///< lines with attributes
  std::string listing_;
  std::vector<TreeNode> nodes_ = std::vector<TreeNode>(1);
  std::vector<NodeId> children_;  ///< of each node in a row
  std::pair<NodeId, std::string> packageSize_;
};

/// A top-level node and what it contributes to an extraction.
struct Contribution {
  NodeId node;
  std::vector<std::string> members;
};

/// Appends the member paths of the checked children, or what is checked below an unchecked one, in sibling
/// order. A node without a text of its own passes its children instead.
void CollectCheckedPaths(const ArchiveTree& tree, NodeId node, std::vector<std::string>& list);

/// What is to be extracted, a top-level node an entry; `all`: every node as if it were checked.
std::vector<Contribution> contributions(const ArchiveTree& tree, bool all);

}  // namespace archive
