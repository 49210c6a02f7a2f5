#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/TreeNode.h"

namespace archive {

/// Whether a sorts before b: plain comparison of the characters' codes after lower-casing both (inner texts).
bool sortsBefore(std::string_view a, std::string_view b);

/// The order of siblings while a tree is filled. A new node goes before the first sibling that it may stand
/// before: for a folder one that has no children or a greater text, for a file one that has no children and a
/// greater text; where there is none, behind the last. Whether a sibling has children is what counts, so the
/// lists are not simply sorted. One insertion costs O(log n): every list is a balanced tree whose nodes know
/// the greatest text below them. Only a list of nothing but files can wait until it is asked for, and then be
/// sorted, which is several times as fast.
class SiblingOrder {
 public:
  explicit SiblingOrder(const std::vector<TreeNode>& nodes) : nodes_(nodes) {}

  void reserve(std::size_t nodes) {
    links_.reserve(nodes);
    starts_.reserve(nodes);
  }
  void insert(NodeId parent, NodeId node, bool asFolder);
  void gotFirstChild(NodeId node);              ///< its `childCount` has just become 1
  bool standsBefore(NodeId a, NodeId b) const;  ///< of two siblings of the same text
  void appendChildren(NodeId parent, std::vector<NodeId>& out) const;

 private:
  struct Link {
    NodeId left = 0, right = 0, up = 0;  ///< of a file that waits: right is the one that came before it
    NodeId root = 0;                     ///< of the list of its own children; of those that wait, the newest
    bool settled = false;                ///< that list is a tree, and not of files that wait
    std::uint32_t size = 1;
    NodeId greatest = 0;      ///< of itself and all below it
    NodeId greatestFile = 0;  ///< the same among those without children; 0: there is none
  };
  using Start = std::pair<std::uint64_t, std::uint64_t>;  // a text's first characters, as they compare
  struct Newcomer {
    std::string_view text;
    Start start;
    bool asFolder;
  };

  static Start startOf(std::string_view text);
  void settle(NodeId parent);
  void insertSettled(NodeId parent, NodeId node, bool asFolder);
  std::vector<NodeId> waiting(NodeId parent) const;
  std::size_t commonStart(const std::vector<NodeId>& files) const;
  void appendSorted(const std::vector<NodeId>& files, std::vector<NodeId>& out) const;
  bool greater(NodeId node, std::string_view text) const;
  bool greater(NodeId node, const Newcomer& newcomer) const;
  bool goesBefore(const Newcomer& newcomer, NodeId sibling) const;
  bool goesBeforeSome(const Newcomer& newcomer, NodeId subtree) const;
  NodeId firstBehind(const Newcomer& newcomer, NodeId root) const;
  NodeId greaterOf(NodeId a, NodeId b) const;
  void attach(NodeId& root, NodeId node, NodeId next);
  void announce(NodeId node, const Newcomer& newcomer);
  void refresh(NodeId node);
  void rotateUp(NodeId node, NodeId& root);
  std::uint32_t rank(NodeId node) const;

  const std::vector<TreeNode>& nodes_;
  std::vector<Link> links_ = std::vector<Link>(1);
  std::vector<Start> starts_ = std::vector<Start>(1);
};

}  // namespace archive
