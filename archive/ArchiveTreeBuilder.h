#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "archive/ArchiveTree.h"
#include "archive/SiblingOrder.h"
#include "archive/SiblingTexts.h"
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
  void addTarLine(std::string_view line);
  void addMember(std::string_view line);
  void place(std::string_view path, bool isLink);
  NodeId AddArchiveNode(std::string text, NodeId parent, bool isFolder, int image);
  NodeId addAtTop(std::string text, int image);
  int imageOf(std::string_view text);

  ArchiveTree tree_;
  std::function<std::string()> packageSize_;
  SiblingOrder order_{tree_.nodes_};
  SiblingTexts byText_{tree_.nodes_};  // the first of equal ones
  std::size_t lineCount_ = 0;
  std::size_t position_ = 0;  // where the next line begins
  std::size_t line_ = 0;      // where the line that is being added begins
  std::pair<std::string_view, NodeId>
      folder_;  // of the last line, as printed up to its last "/", and its node
  std::map<std::string, int, std::less<>> images_;  // by extension; asking is slow
  int folderImage_;
  int shortcutImage_;
};

}  // namespace archive
