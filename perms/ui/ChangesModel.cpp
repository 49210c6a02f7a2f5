#include "perms/ui/ChangesModel.h"

#include <QFontDatabase>
#include <array>

#include "platform/desktop/Text.h"

namespace perms {
namespace {

using platform::desktop::toShown;

constexpr std::array<const char*, 2> captions = {"Path", "Permissions"};
constexpr int pathColumn = 0;

}  // namespace

void ChangesModel::setChanges(std::vector<ModeChange> changes) {
  beginResetModel();
  changes_ = std::move(changes);
  choose();
  endResetModel();
}

void ChangesModel::narrow(const QString& text) {
  beginResetModel();
  narrowedBy_ = text;
  choose();
  endResetModel();
}

void ChangesModel::choose() {
  shown_.clear();
  for (std::size_t i = 0; i < changes_.size(); ++i)
    if (narrowedBy_.isEmpty() || toShown(changes_[i].path).contains(narrowedBy_, Qt::CaseInsensitive) ||
        toShown(changes_[i].text()).contains(narrowedBy_))
      shown_.push_back(i);
}

int ChangesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int ChangesModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(captions.size());
}

QVariant ChangesModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const ModeChange& change = changes_[shown_[static_cast<std::size_t>(index.row())]];
  const bool path = index.column() == pathColumn;
  if (role == Qt::DisplayRole) return toShown(path ? change.path : change.text());
  if (role == Qt::ToolTipRole) return platform::desktop::toPlainTip(path ? change.path : change.text());
  if (role == Qt::FontRole && !path) return QFontDatabase::systemFont(QFontDatabase::FixedFont);
  return {};
}

QVariant ChangesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return QLatin1String(captions[static_cast<std::size_t>(section)]);
}

}  // namespace perms
