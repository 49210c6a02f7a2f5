#include "download/ui/AddressListModel.h"

#include "platform/desktop/Text.h"

namespace download {
namespace {

constexpr int longestName = 30;  // so that the address behind it stays in sight

}  // namespace

void AddressListModel::setEntries(const std::vector<KnownAddress>& entries) {
  beginResetModel();
  entries_ = entries;
  endResetModel();
}

int AddressListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant AddressListModel::data(const QModelIndex& index, int role) const {
  if (role == Qt::DisplayRole) return platform::desktop::toShown(entry(index).text());
  return role == Qt::EditRole ? platform::desktop::toControl(entry(index).name) : QVariant();
}

bool AddressListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const QString name = value.toString().simplified().left(longestName);
  if (role != Qt::EditRole) return false;
  entries_[static_cast<std::size_t>(index.row())].name = platform::desktop::fromControl(name);
  emit dataChanged(index, index);
  emit renamed(entry(index));
  return true;
}

Qt::ItemFlags AddressListModel::flags(const QModelIndex& index) const {
  return QAbstractListModel::flags(index) | Qt::ItemIsEditable | Qt::ItemNeverHasChildren;
}

}  // namespace download
