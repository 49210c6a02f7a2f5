#pragma once

#include <cstdint>
#include <string>

namespace archive {

/// A node of an archive's tree, counted from 1 in the order of making; 0 is the invisible root above the
/// top-level nodes.
using NodeId = std::uint32_t;

struct TreeNode {
  std::string text;      ///< inner form; its components' "./" and "../" in front
  std::size_t line = 0;  ///< where the entry that made it begins in the listing
  NodeId parent = 0;
  std::uint32_t row = 0;         ///< among its siblings
  std::uint32_t firstChild = 0;  ///< position in the list of all children
  std::uint32_t childCount = 0;
  std::uint32_t nameLength = 0;  ///< how much of the text is the member's name; a link's text may follow
  std::uint8_t image = 0;        ///< image index, counted from 1
  bool checked = true;
  bool partlySelected = false;
};

}  // namespace archive
