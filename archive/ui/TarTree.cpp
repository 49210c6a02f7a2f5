#include "archive/ui/TarTree.h"

#include <QItemSelectionModel>

namespace archive {
namespace {

/// Qt 6.4 makes of the accessible action Toggle a selection of that one entry, or takes it. What a person
/// selects comes as a range, or clears what was selected before.
class ToggleOrSelect : public QItemSelectionModel {
 public:
  ToggleOrSelect(QAbstractItemModel* model, TarTree* tree) : QItemSelectionModel(model, tree), tree_(*tree) {}

  using QItemSelectionModel::select;
  void select(const QModelIndex& index, SelectionFlags command) override {
    if (command == Select || command == Deselect)
      emit tree_.toggled(index);
    else
      QItemSelectionModel::select(index, command);
  }

 private:
  TarTree& tree_;
};

}  // namespace

/// Entries are selected, not rows: a row is known to assistive tools by its place below its folder only, and
/// another entry would be toggled.
TarTree::TarTree(QWidget* parent) : QTreeView(parent) {
  setSelectionMode(ExtendedSelection);
  setSelectionBehavior(SelectItems);
  setDragEnabled(true);
  setDragDropMode(DragOnly);
}

void TarTree::setModel(QAbstractItemModel* model) {
  QTreeView::setModel(model);
  QItemSelectionModel* const usual = selectionModel();
  setSelectionModel(new ToggleOrSelect(model, this));
  delete usual;
}

void TarTree::startDrag(Qt::DropActions /*actions*/) { emit dragBegun(); }

}  // namespace archive
