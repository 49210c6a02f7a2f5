#include "platform/desktop/FolderListModel.h"

#include <algorithm>

#include "platform/DirectorySearch.h"
#include "platform/desktop/ImageList.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

constexpr int closedFolder = 1;  // image indexes
constexpr int openFolder = 2;

/// The drive and the names below it; empty for a text that does not begin with a drive.
std::vector<std::string> partsOf(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\\/"), text.size());
    const std::string_view part = text.substr(0, end);
    if (parts.empty() || (!part.empty() && part != ".")) parts.emplace_back(part);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  if (parts.empty() || parts[0].size() != 2 || parts[0][1] != ':') return {};
  if (parts[0][0] >= 'a' && parts[0][0] <= 'z') parts[0][0] = static_cast<char>(parts[0][0] - 'a' + 'A');
  return parts;
}

std::string joined(const std::vector<std::string>& parts) {
  if (parts.size() == 1) return parts[0] + "\\";
  std::string path;
  for (const std::string& part : parts) path += path.empty() ? part : "\\" + part;
  return path;
}

/// By name without case; names that differ in nothing else keep the order of their bytes.
void sortByName(std::vector<std::string>& names) {
  std::vector<std::pair<QString, std::string>> keyed;
  keyed.reserve(names.size());
  for (std::string& name : names) {
    QString key = toShown(name).toCaseFolded();
    keyed.emplace_back(std::move(key), std::move(name));
  }
  std::sort(keyed.begin(), keyed.end());
  std::transform(keyed.begin(), keyed.end(), names.begin(),
                 [](auto& pair) { return std::move(pair.second); });
}

}  // namespace

std::string folderPath(std::string_view text) {
  const std::vector<std::string> parts = partsOf(text);
  return parts.empty() ? std::string() : joined(parts);
}

bool FolderListModel::setPath(const std::string& path) {
  std::vector<std::string> parts = partsOf(path);
  std::optional<std::vector<std::string>> below = subfolders(parts);
  if (!below) return false;
  beginResetModel();
  parts_ = std::move(parts);
  subfolders_ = std::move(*below);
  endResetModel();
  return true;
}

void FolderListModel::readAgain() {
  if (!seen_) return;
  std::vector<std::string> below = subfolders(parts_).value_or(std::vector<std::string>());
  if (below == subfolders_) return;
  beginResetModel();
  subfolders_ = std::move(below);
  endResetModel();
}

std::optional<std::vector<std::string>> FolderListModel::subfolders(
    const std::vector<std::string>& parts) const {
  if (drives_ == nullptr || parts.empty()) return std::nullopt;
  const std::string folder = joined(parts);
  const Files files(*drives_);
  if (!seen_)
    return files.readProblem(folder) == 0 ? std::optional(std::vector<std::string>()) : std::nullopt;
  auto entries = files.entries(folder);
  if (!entries) return std::nullopt;
  std::vector<std::string> names;
  for (Files::Entry& entry : *entries)
    if (entry.isFolder && !leftOut(entry, folder)) names.push_back(std::move(entry.name));
  sortByName(names);
  return names;
}

bool FolderListModel::leftOut(const Files::Entry& entry, const std::string& folder) const {
  return !hiddenShown_ && isHidden(*drives_, folder + '\\' + entry.name);
}

const std::string& FolderListModel::nameOf(int row) const {
  const auto at = static_cast<std::size_t>(row);
  return at < parts_.size() ? parts_[at] : subfolders_[at - parts_.size()];
}

std::string FolderListModel::pathOf(int row) const {
  if (row < 0 || row >= rowCount()) return {};
  std::vector<std::string> parts(parts_.begin(), parts_.begin() + std::min(row, openRow()) + 1);
  if (row > openRow()) parts.push_back(nameOf(row));
  return joined(parts);
}

int FolderListModel::rowOf(std::string_view path) const {
  const std::vector<std::string> parts = partsOf(path);
  const auto depth = static_cast<int>(parts.size()) - 1;
  const auto common = static_cast<std::ptrdiff_t>(std::min(parts.size(), parts_.size()));
  if (depth < 0 || depth > openRow() + 1 ||
      !std::equal(parts.begin(), parts.begin() + common, parts_.begin()))
    return -1;
  if (depth <= openRow()) return depth;
  const auto found = std::find(subfolders_.begin(), subfolders_.end(), parts.back());
  return found == subfolders_.end() ? -1 : depth + static_cast<int>(found - subfolders_.begin());
}

int FolderListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(parts_.size() + subfolders_.size());
}

QVariant FolderListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const int row = index.row();
  switch (role) {
    case Qt::DisplayRole:
      return toShown(row == 0 ? parts_[0] + "\\" : nameOf(row));
    case Qt::DecorationRole:
      return imageIcon(row <= openRow() ? openFolder : closedFolder);
    case Qt::ToolTipRole:
      return toPlainTip(pathOf(row));
    case Qt::AccessibleDescriptionRole:
      return toShown(pathOf(row));
    case DepthRole:
      return std::min(row, openRow() + 1);
    default:
      return {};
  }
}

}  // namespace platform::desktop
