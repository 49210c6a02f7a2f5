#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"

struct inotify_event;

namespace platform {

/// Hears of changes to one folder's entries, to the folder itself and to those above it, as far as the system
/// tells of them (inotify; nothing is told of what other machines do to a shared folder). A file that is
/// written counts once it is closed, also one that is rewritten in place.
class FolderWatch {
 public:
  FolderWatch();

  int descriptor() const { return events_.get(); }  ///< readable when there is something to hear; -1: never
  /// Hears of this folder (absolute) from now on; what was not heard yet is forgotten. A folder that is not
  /// there is never heard of.
  void follow(const std::string& hostFolder);
  bool heard();  ///< whether there was something; reads all there is

 private:
  struct Watched {
    int number = -1;
    std::string entry;  // the one that matters; empty: all
  };
  bool concerns(const inotify_event& event, std::string_view name) const;

  Descriptor events_;
  std::vector<Watched> watched_;  // the folder, then those above it
};

}  // namespace platform
