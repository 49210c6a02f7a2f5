#include "browser/ui/DirPaneModel.h"

#include <QGuiApplication>
#include <QPalette>
#include <unordered_map>

#include "browser/RowDetails.h"
#include "platform/desktop/ReadableColour.h"
#include "platform/desktop/Text.h"

namespace browser {
namespace {

constexpr std::array<const char*, 4> captions = {"Filename", "Permissions", "Size", "Modified"};
constexpr int nameColumn = 0;
constexpr int modeColumn = 1;
constexpr int sizeColumn = 2;
constexpr double dimming = 0.5;
constexpr std::size_t mostRanges = 100;  // each moves all rows behind it

QColor rowColour(const PaneRow& row) {
  const QPalette palette = QGuiApplication::palette();
  QColor colour = palette.color(QPalette::Text);
  if (row.system) colour = platform::desktop::readableColour(Qt::blue, palette.color(QPalette::Base));
  if (row.hidden) colour.setAlphaF(static_cast<float>(dimming));
  return colour;
}

}  // namespace

void DirPaneModel::setRows(std::vector<PaneRow> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  arrangeRows(sortedOrder(rows_, order_));
  endResetModel();
}

void DirPaneModel::setModes(std::size_t first, std::vector<LsEntry> entries) {
  const std::size_t end = std::min(rows_.size(), first + entries.size());
  for (std::size_t place = first; place < end; ++place)
    rows_[rowOfPlace_[place]].ls = std::move(entries[place - first]);
}

void DirPaneModel::showModes() {
  if (rows_.empty()) return;
  emit dataChanged(index(0, modeColumn), index(rowCount() - 1, modeColumn), {Qt::DisplayRole});
}

void DirPaneModel::sortBy(PaneOrder order) {
  emit layoutAboutToBeChanged({}, VerticalSortHint);
  order_ = order;
  std::vector<std::size_t> placesBefore;
  placesBefore.reserve(rows_.size());
  for (const PaneRow& row : rows_) placesBefore.push_back(row.place);
  arrangeRows(sortedOrder(rows_, order));
  movePersistent(placesBefore);
  emit layoutChanged({}, VerticalSortHint);
  emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

void DirPaneModel::arrangeRows(const std::vector<std::size_t>& from) {
  std::vector<PaneRow> moved;
  moved.reserve(rows_.size());
  rowOfPlace_.resize(rows_.size());
  for (const std::size_t old : from) {
    rowOfPlace_[rows_[old].place] = moved.size();
    moved.push_back(std::move(rows_[old]));
  }
  rows_ = std::move(moved);
}

void DirPaneModel::movePersistent(const std::vector<std::size_t>& placesBefore) {
  const QModelIndexList before = persistentIndexList();
  QModelIndexList after;
  after.reserve(before.size());
  for (const QModelIndex& kept : before) {
    const std::size_t place = placesBefore[static_cast<std::size_t>(kept.row())];
    after.append(index(static_cast<int>(rowOfPlace_[place]), kept.column()));
  }
  changePersistentIndexList(before, after);
}

/// A name that somebody makes anew while its folder is read may be told of twice.
bool DirPaneModel::updateRows(std::vector<PaneRow>& rows) {
  std::unordered_map<std::string_view, std::size_t> found;
  found.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) found.emplace(rows[i].name, i);
  if (found.size() < rows.size()) return false;
  std::vector<bool> kept(rows.size());
  const auto gone = [&](std::size_t row) {
    const auto place = found.find(rows_[row].name);
    if (place == found.end() || kept[place->second]) return true;
    kept[place->second] = true;
    return false;
  };
  std::vector<std::pair<std::size_t, std::size_t>> ranges;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (!gone(row)) continue;
    if (ranges.empty() || ranges.back().second != row) ranges.emplace_back(row, row);
    ++ranges.back().second;
  }
  if (ranges.size() > mostRanges) return false;
  for (auto range = ranges.rbegin(); range != ranges.rend(); ++range)
    removeRange(range->first, range->second);
  bool moved = rows.size() != rows_.size();
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const auto place = found.extract(rows_[row].name);
    moved |= replaceRow(row, std::move(rows[place.mapped()]));
  }
  std::vector<PaneRow> added;
  for (const auto& [name, i] : found) added.push_back(std::move(rows[i]));
  if (!added.empty()) append(std::move(added));
  rowOfPlace_.resize(rows_.size());
  for (std::size_t row = 0; row < rows_.size(); ++row) rowOfPlace_[rows_[row].place] = row;
  if (moved) sortBy(order_);
  return true;
}

void DirPaneModel::removeRange(std::size_t first, std::size_t end) {
  beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end) - 1);
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(first),
              rows_.begin() + static_cast<std::ptrdiff_t>(end));
  endRemoveRows();
}

/// True when it shows something else now, and so may belong elsewhere.
bool DirPaneModel::replaceRow(std::size_t row, PaneRow now) {
  PaneRow& shown = rows_[row];
  shown.place = now.place;
  if (shown == now) return false;
  shown = std::move(now);
  const int at = static_cast<int>(row);
  emit dataChanged(index(at, 0), index(at, columnCount() - 1));
  return true;
}

void DirPaneModel::append(std::vector<PaneRow> rows) {
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
  std::move(rows.begin(), rows.end(), std::back_inserter(rows_));
  endInsertRows();
}

std::vector<int> DirPaneModel::rowsOf(const std::vector<std::string>& names) const {
  std::unordered_map<std::string_view, int> places;
  if (!names.empty()) places.reserve(rows_.size());
  for (std::size_t i = 0; i < rows_.size() && !names.empty(); ++i)
    places.try_emplace(rows_[i].name, static_cast<int>(i));
  std::vector<int> found;
  for (const std::string& name : names) {
    const auto place = places.find(name);
    if (place != places.end()) found.push_back(place->second);
  }
  return found;
}

std::vector<std::string> DirPaneModel::nearestFirst(int row) const {
  std::vector<std::string> names;
  for (int below = row; below >= 0 && below < rowCount(); ++below)
    names.push_back(rows_[static_cast<std::size_t>(below)].name);
  for (int above = row - 1; above >= 0; --above) names.push_back(rows_[static_cast<std::size_t>(above)].name);
  return names;
}

int DirPaneModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int DirPaneModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(captions.size());
}

QString DirPaneModel::text(const PaneRow& row, int column) const {
  switch (column) {
    case nameColumn:
      return platform::desktop::toShown(row.name);
    case modeColumn:
      return platform::desktop::toShown(row.ls.mode);
    case sizeColumn:
      return QString::fromStdString(sizeText(row));
    default:
      return row.modified ? QString::fromStdString(locale_.dateTimeText(*row.modified)) : QString();
  }
}

QVariant DirPaneModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const PaneRow& row = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case Qt::DisplayRole:
      return text(row, index.column());
    case Qt::EditRole:
      return platform::desktop::toControl(row.name);
    case Qt::DecorationRole:
      return index.column() == nameColumn ? QVariant(icons_.of(row)) : QVariant();
    case Qt::ForegroundRole:
      return row.system || row.hidden ? QVariant(rowColour(row)) : QVariant();
    case Qt::FontRole:
      return row.system ? QVariant(platform::desktop::slantedFont()) : QVariant();
    case Qt::ToolTipRole:
      return platform::desktop::toPlainTip(row.name + '\n' + rowDetails(row));
    case Qt::AccessibleDescriptionRole:
      return index.column() == nameColumn ? platform::desktop::toShown(rowDetails(row)) : QString();
    case Qt::TextAlignmentRole:
      return index.column() == sizeColumn ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    default:
      return {};
  }
}

Qt::ItemFlags DirPaneModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags others = QAbstractTableModel::flags(index);
  return index.column() == nameColumn ? others | Qt::ItemIsEditable | Qt::ItemIsDragEnabled : others;
}

/// Only the disk changes a name; until then it stays.
bool DirPaneModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role == Qt::EditRole) emit nameTyped(data(index, role).toString(), value.toString());
  return false;
}

QVariant DirPaneModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  if (role == Qt::TextAlignmentRole)
    return QVariant((section == sizeColumn ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  const QString caption = QString::fromLatin1(captions[static_cast<std::size_t>(section)]);
  if (section != order_.sortColumn - 1) return caption;
  return caption + QLatin1String(order_.ascending ? " >" : " <");
}

}  // namespace browser
