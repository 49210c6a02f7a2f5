#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "perms/ModeChanges.h"

namespace perms {

/// The entries whose mode would change, all or those that hold a text: path, and old and new mode.
class ChangesModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit ChangesModel(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

  void setChanges(std::vector<ModeChange> changes);
  void narrow(const QString& text);  ///< without regard to case; empty: all

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void choose();

  std::vector<ModeChange> changes_;
  std::vector<std::size_t> shown_;  // places in changes_
  QString narrowedBy_;
};

}  // namespace perms
