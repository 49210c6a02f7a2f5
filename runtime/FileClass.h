#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"

namespace runtime {

/// One entry of a folder.
struct InfoClass {
  std::string FileName;
  std::int64_t FileSize = 0;              ///< bytes
  std::optional<std::time_t> ModifyDate;  ///< seconds since the epoch; absent when unknown
  std::uint32_t FileAttr = 0;             ///< platform::attribute... bits
  std::string FileExt;                    ///< files only: lower case, without the dot
};

/// Reads one folder's entries: subfolders and files, in the order that the system returns them.
class FileClass {
 public:
  explicit FileClass(const platform::DriveTable& drives) : drives_(drives) {}
  bool Refresh(std::string_view pattern);  ///< folder path followed by "*"; true when anything was found
  const std::vector<InfoClass>& Folders() const { return folders_; }
  const std::vector<InfoClass>& Files() const { return files_; }
  void EmptyTrash();

 private:
  const platform::DriveTable& drives_;
  std::vector<InfoClass> folders_;
  std::vector<InfoClass> files_;
};

}  // namespace runtime
