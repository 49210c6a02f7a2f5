#pragma once

#include <QTreeView>

namespace archive {

/// The tree of an archive's contents, out of which entries can be dragged.
class TarTree : public QTreeView {
  Q_OBJECT

 public:
  explicit TarTree(QWidget* parent = nullptr);
  void setModel(QAbstractItemModel* model) override;

 signals:
  void toggled(const QModelIndex& index);  ///< by an assistive tool
  void dragBegun();                        ///< of the selected entries

 protected:
  void startDrag(Qt::DropActions actions) override;
};

}  // namespace archive
