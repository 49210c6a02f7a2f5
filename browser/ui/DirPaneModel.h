#pragma once

#include <QAbstractTableModel>
#include <string>
#include <vector>

#include "browser/PaneRow.h"
#include "browser/PaneSort.h"
#include "browser/ui/RowIcons.h"
#include "platform/desktop/Locale.h"

namespace browser {

/// The rows of the file pane. Columns: "Filename", "Permissions", "Size", "Modified"; the caption of the
/// sorted one ends in " >" (ascending) or " <". Texts and pictures are made when a row is shown; its tip and
/// description say what has no column.
class DirPaneModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  void setRows(std::vector<PaneRow> rows);  ///< in listing order; they show in the model's
  const std::vector<PaneRow>& rows() const { return rows_; }
  /// Makes the rows these, in listing order and with all that `ls` says, telling the views of the differences
  /// only, and takes them. False where those are so scattered that setRows() is quicker, or two have one
  /// name: nothing has changed.
  bool updateRows(std::vector<PaneRow>& rows);
  /// Of the rows whose places begin with `first`; it shows with the next showModes().
  void setModes(std::size_t first, std::vector<LsEntry> entries);
  void showModes();
  void sortBy(PaneOrder order);
  PaneOrder order() const { return order_; }
  /// The rows of these exact names (of each the first), in the names' order; names without a row are left
  /// out. Linear.
  std::vector<int> rowsOf(const std::vector<std::string>& names) const;
  /// The names of a row, of those below it and of those above it: the first that stays takes its part. None
  /// for -1.
  std::vector<std::string> nearestFirst(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

 signals:
  void nameTyped(const QString& name,
                 const QString& typed);  ///< for a row; it keeps its name until it is listed

 private:
  QString text(const PaneRow& row, int column) const;
  void arrangeRows(const std::vector<std::size_t>& from);
  void removeRange(std::size_t first, std::size_t end);
  bool replaceRow(std::size_t row, PaneRow now);
  void append(std::vector<PaneRow> rows);
  void movePersistent(const std::vector<std::size_t>& placesBefore);

  std::vector<PaneRow> rows_;
  std::vector<std::size_t> rowOfPlace_;
  PaneOrder order_;
  platform::desktop::Locale locale_;
  mutable RowIcons icons_;
};

}  // namespace browser
