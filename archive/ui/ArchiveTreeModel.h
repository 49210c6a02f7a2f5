#pragma once

#include <QAbstractItemModel>

#include "archive/ArchiveTree.h"

namespace archive {

/// An archive's tree as a view shows it, with check boxes; or, instead, one line that is no member.
class ArchiveTreeModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  using QAbstractItemModel::QAbstractItemModel;

  void setTree(ArchiveTree tree);
  void showHint(const QString& text);  ///< an entry of its own, without a check box
  void clear() { setTree({}); }
  const ArchiveTree& tree() const { return tree_; }
  ArchiveTree takeTree();  ///< nothing is shown then

  QModelIndex indexOf(NodeId node) const;
  static NodeId node(const QModelIndex& index);  ///< 0 for the hint and for no entry
  void setAllChecked(bool state);
  /// Gives a folder another picture; an entry without children keeps its own.
  void setFolderImage(const QModelIndex& index, const char* key);

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  QVariant memberData(NodeId node, int role) const;
  QString tickText(NodeId node) const;
  void childrenChanged(NodeId parent);
  void changedBelow(NodeId node);

  ArchiveTree tree_;
  QString hint_;
};

}  // namespace archive
