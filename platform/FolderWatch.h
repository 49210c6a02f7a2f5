#pragma once

#include <string>

#include "platform/Descriptor.h"

namespace platform {

/// Hears of changes to one folder's entries and to the folder itself, as far as the system tells of them
/// (inotify; nothing is told of what other machines do to a shared folder). A file that is written counts
/// once it is closed, also one that is rewritten in place.
class FolderWatch {
 public:
  FolderWatch();

  int descriptor() const { return events_.get(); }  ///< readable when there is something to hear; -1: never
  /// Hears of this folder from now on; what was not heard yet is forgotten. A folder that is not there is
  /// never heard of.
  void follow(const std::string& hostFolder);
  bool heard();  ///< whether there was something; reads all there is

 private:
  Descriptor events_;
  int folder_ = -1;
};

}  // namespace platform
