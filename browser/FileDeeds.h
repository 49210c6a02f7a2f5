#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "runtime/JobEnd.h"
#include "runtime/Services.h"

namespace browser {

/// What is done to single entries of a folder without a window of its own. Names are in held form. The log
/// tells in one line what was done; a box tells what could not be, and why. Whoever calls it holds the gate
/// and lists afterwards.
class FileDeeds {
 public:
  /// `folder` ends in a backslash.
  FileDeeds(runtime::Services services, std::string folder);

  /// Gives an entry the name that somebody typed; what has that name already stays. The new name, empty where
  /// the entry keeps its own.
  std::string rename(const std::string& name, std::string_view typed);
  std::string makeFolder();  ///< its name, one that is free; empty: it could not be made

  /// Asks first. A stop leaves the rest where it is.
  runtime::JobEnd moveToTrash(const std::vector<std::string>& names);
  void edit(const std::vector<std::string>& names);  ///< the first ten of them, of which no text is opened

  void logCopied(const std::vector<std::string>& names, const char* what);  ///< "Copied"
  /// "NAME (why)" of what a deed left out.
  void tellLeft(const std::vector<std::string>& left, const std::string& what);

 private:
  bool agreed(const std::vector<std::string>& names);
  void tell(const std::string& text);
  void log(const std::string& done, const std::vector<std::string>& names);

  runtime::Services services_;
  std::string folder_;
};

/// As much of a name as belongs to its first part, in bytes: "a" of "a.txt" and of "a.tar.gz", all of ".a".
std::size_t stemLength(std::string_view name);

}  // namespace browser
