#pragma once

#include <ctime>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/Services.h"

namespace archive {

/// What a run of tar that was ended leaves behind: the members that came out whole stay, the one that was
/// being written goes. GNU tar 1.34 prints a member's name before it unpacks it, gives a file the archive's
/// time when all is written, and lets an empty file stand for a link that it makes at the very end.
class ExtractRemains {
 public:
  /// To be made right before the run. `members`: what might be replaced; none where the folder is new.
  ExtractRemains(const runtime::Services& services, std::string outFolder,
                 const std::vector<std::string>& members);
  /// After the run: removes what is not whole and logs it. `printed` is all that tar printed; what would lead
  /// out of the folder was never given to it.
  void clear(std::string_view printed);

 private:
  enum class Made { Whole, Part, Nothing };
  Made lookAt(const std::string& path, bool last) const;
  std::string pathOf(const std::string& member) const;

  runtime::Services services_;
  std::string outFolder_;
  std::set<std::string, std::less<>> standing_;  // members in whose place a file stands
  timespec start_{};
};

}  // namespace archive
