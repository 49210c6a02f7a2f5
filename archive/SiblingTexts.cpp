#include "archive/SiblingTexts.h"

#include <bit>
#include <functional>
#include <utility>

namespace archive {

void SiblingTexts::reserve(std::size_t nodes) {
  if (2 * nodes > slots_.size()) resize(std::bit_ceil(2 * nodes));
}

NodeId SiblingTexts::find(NodeId parent, std::string_view text) const {
  return slots_[indexOf(hashOf(parent, text), parent, text)].node;
}

void SiblingTexts::put(NodeId node) {
  reserve(taken_ + 1);
  const TreeNode& put = nodes_[node];
  const std::uint32_t hash = hashOf(put.parent, put.text);
  Slot& slot = slots_[indexOf(hash, put.parent, put.text)];
  if (slot.node == 0) ++taken_;
  slot = {node, hash};
}

std::uint32_t SiblingTexts::hashOf(NodeId parent, std::string_view text) {
  return static_cast<std::uint32_t>(std::hash<std::string_view>()(text)) ^ (parent * 0x9E3779B9U);
}

/// Of the slot that holds such a node, or else of the free one where it belongs.
std::size_t SiblingTexts::indexOf(std::uint32_t hash, NodeId parent, std::string_view text) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t index = hash & mask;; index = (index + 1) & mask) {
    const Slot& slot = slots_[index];
    if (slot.node == 0) return index;
    const TreeNode& held = nodes_[slot.node];
    if (slot.hash == hash && held.parent == parent && held.text == text) return index;
  }
}

void SiblingTexts::resize(std::size_t slots) {
  const std::vector<Slot> before = std::exchange(slots_, std::vector<Slot>(slots));
  const std::size_t mask = slots - 1;
  for (const Slot& slot : before) {
    if (slot.node == 0) continue;
    std::size_t index = slot.hash & mask;
    while (slots_[index].node != 0) index = (index + 1) & mask;
    slots_[index] = slot;
  }
}

}  // namespace archive
