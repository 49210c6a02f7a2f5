#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/DriveTable.h"

namespace platform {

/// The names in a folder, held form, in the system's order, without links.
struct FolderContents {
  struct File {
    std::string name;
    bool isRegular;
  };
  std::vector<std::string> folders;
  std::vector<File> others;
};

/// Reads names and kinds only; nullopt when the folder cannot be read.
std::optional<FolderContents> contentsOf(const DriveTable& drives, std::string_view folder);

}  // namespace platform
