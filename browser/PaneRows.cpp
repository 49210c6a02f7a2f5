#include "browser/PaneRows.h"

#include <unordered_map>

#include "browser/FoldCase.h"
#include "platform/DirectorySearch.h"
#include "platform/HeldName.h"
#include "runtime/ImageKeys.h"

namespace browser {
namespace {

bool has(const runtime::InfoClass& info, std::uint32_t attribute) { return (info.FileAttr & attribute) != 0; }

bool visible(const PaneRow& row, const ListingChoice& choice) {
  return (!row.hidden || choice.showHidden) && (!row.system || choice.showSystem);
}

bool passesFilter(const PaneRow& row, const ListingChoice& choice, const NamePattern& pattern) {
  if (choice.filterIndex <= 0 || runtime::imageTag(row.image) == choice.filterIndex) return true;
  return choice.filterIndex == choice.filterCount - 1 && pattern.matches(row.name);
}

PaneRow rowOf(const runtime::InfoClass& info, int image, bool isFile) {
  PaneRow row;
  row.name = info.FileName;
  row.size = info.FileSize;
  row.modified = info.ModifyDate;
  row.image = image;
  row.isFile = isFile;
  row.hidden = has(info, platform::attributeHidden);
  row.system = has(info, platform::attributeSystem);
  return row;
}

/// What stands between the stars, as names hold it.
std::string heldPattern(std::string_view typed) {
  std::string pattern;
  while (true) {
    const std::size_t star = typed.find('*');
    pattern += platform::holdName(platform::releaseName(typed.substr(0, star)));
    if (star == typed.npos) return pattern;
    pattern += '*';
    typed.remove_prefix(star + 1);
  }
}

/// The picture of each extension is looked for once; there are few in a folder.
class ExtensionImages {
 public:
  int of(const std::string& extension) {
    const auto [place, isNew] = known_.try_emplace(extension, 0);
    if (isNew) place->second = runtime::getImageIndex(extension);
    return place->second;
  }

 private:
  std::unordered_map<std::string, int> known_;
};

}  // namespace

NamePattern::NamePattern(std::string_view typed) : wanted_(foldCase(heldPattern(typed))) {}

bool NamePattern::matches(std::string_view name) const {
  const std::string_view wanted = wanted_;
  const std::string text = foldCase(name);
  std::size_t star = wanted.find('*');
  if (!text.starts_with(wanted.substr(0, star))) return false;
  std::size_t from = star;
  while (star != wanted.npos) {
    const std::size_t begin = star + 1;
    star = wanted.find('*', begin);
    const std::string_view piece = wanted.substr(begin, star == wanted.npos ? star : star - begin);
    if (star == wanted.npos) return text.ends_with(piece);
    const std::size_t at = text.find(piece, from);
    if (at == text.npos) return false;
    from = at + piece.size();
  }
  return true;
}

std::vector<PaneRow> paneRows(const runtime::FileClass& found, const ListingChoice& choice) {
  std::vector<PaneRow> rows;
  rows.reserve(found.Folders().size() + found.Files().size());
  const int folderImage = runtime::getImageIndex("fldr");
  ExtensionImages images;
  const NamePattern pattern(choice.customPattern);
  for (const runtime::InfoClass& info : found.Folders()) {
    PaneRow row = rowOf(info, folderImage, false);
    if (visible(row, choice)) rows.push_back(std::move(row));
  }
  for (const runtime::InfoClass& info : found.Files()) {
    PaneRow row = rowOf(info, images.of(info.FileExt), true);
    if (visible(row, choice) && passesFilter(row, choice, pattern)) rows.push_back(std::move(row));
  }
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].place = i;
  return rows;
}

}  // namespace browser
