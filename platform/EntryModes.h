#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/DriveTable.h"

namespace platform {

/// Modes of entries below one folder. No link is followed on the way from that folder down, nor at its end.
/// Entries of the same folder in a row cost little.
class EntryModes {
 public:
  EntryModes(const DriveTable& drives, const std::string& folder);  ///< Windows path; itself may be a link

  enum class Result { Set, Unwanted, Gone, Refused };
  /// Gives an entry a mode of twelve bits if `wanted` says so of the one that it has.
  Result set(std::string_view path, unsigned mode, const std::function<bool(unsigned)>& wanted);

 private:
  bool enter(const std::string& folder);

  const DriveTable& drives_;
  std::string top_;  ///< host path, as all here
  std::string entered_;
  Descriptor folder_;
};

}  // namespace platform
