#pragma once

#include <string>
#include <vector>

#include "archive/PackCommand.h"
#include "archive/ScratchFolder.h"
#include "runtime/Services.h"

namespace archive {

/// Copies what a run with "../usr8" packs into a folder of its own, so that tar finds usr8 one level above
/// the other names. Scratch folders of runs are not copied, at whatever depth.
class Staging {
 public:
  explicit Staging(const runtime::Services& services);

  /// `insideUsr8`: the current folder is usr8 itself, so the names go below it. False after a stop and after
  /// a failure, which `problem` then tells.
  bool copy(const NameList& list, bool insideUsr8);
  const std::string& problem() const { return problem_; }
  std::string tmpFolder() const { return scratch_.path() + "\\tmp"; }

 private:
  void findOthers(const std::vector<std::string>& names, const std::string& folder);
  bool refuse(const std::string& problem);
  bool makeFolder(const std::string& path);
  bool copyNames(const std::vector<std::string>& names, const std::string& from, const std::string& to);
  bool copyAround(const std::string& name, const std::string& from, const std::string& to);
  bool runCopy(const std::string& listText, const std::string& from, const std::string& to);
  bool copyBelowUsr8(const NameList& list);
  void keepAttributes(const std::string& from, const std::string& to) const;
  bool holdsScratch(const std::string& folder) const;

  runtime::Services services_;
  ScratchFolder scratch_;
  std::vector<std::string> others_;  ///< scratch folders of runs in what is copied
  std::string problem_;
};

}  // namespace archive
