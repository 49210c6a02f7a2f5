#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "browser/PaneRow.h"
#include "runtime/FileClass.h"

namespace browser {

/// Which of a folder's entries are listed.
struct ListingChoice {
  bool showHidden = false;
  bool showSystem = false;
  int filterIndex = 0;  ///< 0 or less: every file; otherwise a category of the images
  int filterCount = 0;  ///< entries of the filter list; the last one is the pattern's
  std::string customPattern;
};

/// A wildcard pattern, compared without regard to case: "*" stands for any text, and a pattern without one
/// for every name that begins with it. The pieces behind and before a "*" may overlap: ab*b matches ab.
class NamePattern {
 public:
  explicit NamePattern(std::string_view typed);
  bool matches(std::string_view name) const;

 private:
  std::string wanted_;  // held form, lower case
};

/// The rows of a folder: its subfolders (never filtered by type), then its files, in the order found. No
/// modes yet.
std::vector<PaneRow> paneRows(const runtime::FileClass& found, const ListingChoice& choice);

}  // namespace browser
