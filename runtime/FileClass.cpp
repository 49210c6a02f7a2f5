#include "runtime/FileClass.h"

#include <utility>

#include "platform/Ascii.h"
#include "platform/DirectorySearch.h"
#include "platform/Files.h"

namespace runtime {
namespace {

InfoClass infoOf(platform::FoundEntry entry) {
  InfoClass info;
  info.FileName = std::move(entry.name);
  info.FileSize = static_cast<std::int64_t>(entry.size);
  info.ModifyDate = entry.modifiedTime;
  info.FileAttr = entry.attributes;
  return info;
}

}  // namespace

bool FileClass::Refresh(std::string_view pattern) {
  EmptyTrash();
  platform::DirectorySearch search(drives_, pattern);
  while (std::optional<platform::FoundEntry> entry = search.next()) {
    InfoClass info = infoOf(std::move(*entry));
    if ((info.FileAttr & platform::attributeDirectory) == 0) {
      info.FileExt = platform::lowerAscii(platform::extensionOf(info.FileName));
      files_.push_back(std::move(info));
    } else if (info.FileName != "." && info.FileName != "..") {
      folders_.push_back(std::move(info));
    }
  }
  return !folders_.empty() || !files_.empty();
}

void FileClass::EmptyTrash() {
  folders_.clear();
  files_.clear();
}

}  // namespace runtime
