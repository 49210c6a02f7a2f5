#pragma once

#include <QListView>

#include "download/ui/AddressListModel.h"

namespace download {

/// The known addresses, as high as they need it, and hidden when there are none. A click, Enter, or the keys
/// that move the selection choose one; F2 or a double click renames it, Delete forgets it.
class AddressList : public QListView {
  Q_OBJECT

 public:
  explicit AddressList(QWidget* parent = nullptr);
  void setEntries(const std::vector<KnownAddress>& entries);

 signals:
  void chosen(const download::KnownAddress& entry);
  void accepted();  ///< by Enter; one was chosen
  void renamed(const download::KnownAddress& entry);
  void forgetWanted(const download::KnownAddress& entry);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  void choose(const QModelIndex& index);
  AddressListModel* model_;  // its parent owns it
};

}  // namespace download
