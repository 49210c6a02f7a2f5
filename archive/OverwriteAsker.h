#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

namespace archive {

enum class OverwriteAnswer { Yes = 0, YesToAll = 1, No = 2, Cancel = 3, NothingAsked = 4 };

/// Something in the output folder that a member would replace.
struct OverwriteQuestion {
  std::string path;  ///< of the existing item, Windows form
  bool isFolder = false;
  std::uint64_t size = 0;  ///< bytes; 0 for a folder
  std::optional<std::time_t> modified;
  std::string member;  ///< what the archive has in its place: "123 bytes, 2006-05-04 13:22", or "?"
};

/// Whoever decides what may be replaced where the user has not agreed beforehand: the dialog, or the batch
/// form's rule.
class OverwriteAsker {
 public:
  virtual ~OverwriteAsker() = default;
  virtual OverwriteAnswer ask(const OverwriteQuestion& question) = 0;  ///< never NothingAsked
};

}  // namespace archive
