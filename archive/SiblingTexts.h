#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "archive/TreeNode.h"

namespace archive {

/// Nodes by parent and text, one for each pair. A table of eight bytes a slot: a set of the standard library
/// takes five times as much, and to free a million of its entries stops the window.
class SiblingTexts {
 public:
  explicit SiblingTexts(const std::vector<TreeNode>& nodes) : nodes_(nodes) {}

  void reserve(std::size_t nodes);
  NodeId find(NodeId parent, std::string_view text) const;  ///< 0: there is none
  void put(NodeId node);                                    ///< in the place of one like it

 private:
  struct Slot {
    NodeId node = 0;
    std::uint32_t hash = 0;
  };

  static std::uint32_t hashOf(NodeId parent, std::string_view text);
  std::size_t indexOf(std::uint32_t hash, NodeId parent, std::string_view text) const;
  void resize(std::size_t slots);

  const std::vector<TreeNode>& nodes_;
  std::vector<Slot> slots_ = std::vector<Slot>(16);  // a power of two, at most half of them taken
  std::size_t taken_ = 0;
};

}  // namespace archive
