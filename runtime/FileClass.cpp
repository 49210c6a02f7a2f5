#include "runtime/FileClass.h"

#include <algorithm>
#include <utility>

#include "platform/DirectorySearch.h"
#include "platform/Files.h"

namespace runtime {
namespace {

/// Only ASCII letters have a lower case here; others stay, whatever the locale.
std::string lowerCased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

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
      info.FileExt = lowerCased(platform::extensionOf(info.FileName));
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
