#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>

#include "archive/ArchiveTree.h"
#include "archive/SiblingOrder.h"
#include "runtime/ArchiveKind.h"

namespace archive {

/// Fills an archive's tree from a tool's listing, line by line: tar's verbose one, or the names that ar
/// prints.
class ArchiveTreeBuilder {
 public:
  /// `packageSize` is asked for the content of an ipk's member of that name.
  ArchiveTreeBuilder(runtime::ArchiveKind kind, std::string listing,
                     std::function<std::string()> packageSize = {});
  ArchiveTreeBuilder(const ArchiveTreeBuilder&) = delete;
  ArchiveTreeBuilder& operator=(const ArchiveTreeBuilder&) = delete;

  std::size_t lineCount() const { return lineCount_; }  ///< lines that end in a line feed
  bool addNextLine();                                   ///< false: there was none
  /// The tree of the lines so far. The builder is used up.
  ArchiveTree finish();

 private:
  struct Key {
    NodeId parent;
    std::string_view text;
  };
  struct Hash {
    using is_transparent = void;
    const ArchiveTree* tree;
    std::size_t operator()(const Key& key) const {
      return std::hash<std::string_view>()(key.text) ^ (key.parent * std::size_t{0x9E3779B97F4A7C15});
    }
    std::size_t operator()(NodeId node) const { return (*this)({tree->parent(node), tree->text(node)}); }
  };
  struct Equal {
    using is_transparent = void;
    const ArchiveTree* tree;
    static const Key& keyOf(const Key& key) { return key; }
    Key keyOf(NodeId node) const { return {tree->parent(node), tree->text(node)}; }
    template <typename A, typename B>
    bool operator()(const A& a, const B& b) const {
      return keyOf(a).parent == keyOf(b).parent && keyOf(a).text == keyOf(b).text;
    }
  };

  void addTarLine(std::string_view line);
  void addMember(std::string_view line);
  void place(std::string_view path, bool isLink);
  NodeId AddArchiveNode(std::string text, NodeId parent, bool isFolder, int image);
  void remember(NodeId node);
  int imageOf(std::string_view text);

  ArchiveTree tree_;
  std::function<std::string()> packageSize_;
  SiblingOrder order_{tree_.nodes_};
  std::unordered_set<NodeId, Hash, Equal> byText_{0, Hash{&tree_}, Equal{&tree_}};  // the first of equal ones
  std::size_t lineCount_ = 0;
  std::size_t position_ = 0;                        // where the next line begins
  std::size_t line_ = 0;                            // where the line that is being added begins
  std::map<std::string, int, std::less<>> images_;  // by extension; asking is slow
  int folderImage_;
  int shortcutImage_;
};

}  // namespace archive
