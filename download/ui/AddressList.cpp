#include "download/ui/AddressList.h"

#include <QKeyEvent>

namespace download {

AddressList::AddressList(QWidget* parent) : QListView(parent), model_(new AddressListModel(this)) {
  setModel(model_);
  setEditTriggers(DoubleClicked | EditKeyPressed);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTabKeyNavigation(false);
  connect(this, &QListView::clicked, this, &AddressList::choose);
  connect(model_, &AddressListModel::renamed, this, &AddressList::renamed);
}

void AddressList::setEntries(const std::vector<KnownAddress>& entries) {
  const int row = currentIndex().row();
  model_->setEntries(entries);
  const int rows = model_->rowCount();
  setVisible(rows > 0);
  setFixedHeight(rows * sizeHintForRow(0) + 2 * frameWidth());
  if (row >= 0 && rows > 0)
    selectionModel()->setCurrentIndex(model_->index(std::min(row, rows - 1)), QItemSelectionModel::NoUpdate);
}

void AddressList::choose(const QModelIndex& index) {
  if (index.isValid()) emit chosen(model_->entry(index));
}

void AddressList::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
  QListView::selectionChanged(selected, deselected);
  if (!selected.isEmpty()) choose(selected.indexes().front());
}

void AddressList::keyPressEvent(QKeyEvent* event) {
  const QModelIndex index = currentIndex();
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  const bool ours = enter || event->key() == Qt::Key_Delete;
  if (!ours || !index.isValid()) return QListView::keyPressEvent(event);
  event->accept();  // Enter starts nothing
  if (state() == EditingState) return;
  const KnownAddress entry = model_->entry(index);  // which may go
  if (!enter) return emit forgetWanted(entry);
  choose(index);
  emit accepted();
}

}  // namespace download
