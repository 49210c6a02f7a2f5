#pragma once

#include <QAbstractListModel>

#include "download/KnownAddresses.h"

namespace download {

/// Known addresses, a row each. What can be edited of a row is the name.
class AddressListModel : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;
  void setEntries(const std::vector<KnownAddress>& entries);
  const KnownAddress& entry(const QModelIndex& index) const {
    return entries_[static_cast<std::size_t>(index.row())];
  }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 signals:
  void renamed(const download::KnownAddress& entry);  ///< by its user

 private:
  std::vector<KnownAddress> entries_;
};

}  // namespace download
