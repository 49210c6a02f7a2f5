#include "platform/desktop/FileList.h"

#include <QStyledItemDelegate>
#include <algorithm>

#include "platform/Files.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

class ShownNameDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QString displayText(const QVariant& name, const QLocale&) const override {
    return toShown(fromControl(name.toString()));
  }
};

}  // namespace

FileList::FileList(QWidget* parent) : QListView(parent), names_(new QStringListModel(this)) {
  setModel(names_);
  setItemDelegate(new ShownNameDelegate(this));
  setUniformItemSizes(true);
  setEditTriggers(NoEditTriggers);
  setSelectionMode(ExtendedSelection);
}

void FileList::setPath(const std::string& folder) {
  folder_ = folder;
  names_->setStringList({});
  if (isVisible()) readFolder();
}

void FileList::showEvent(QShowEvent* event) {
  QListView::showEvent(event);
  readFolder();
}

void FileList::readFolder() {
  QStringList names;
  if (drives_ != nullptr)
    for (const Files::Entry& entry : Files(*drives_).entries(folder_).value_or(std::vector<Files::Entry>()))
      if (!entry.isFolder) names.append(toControl(entry.name));
  names_->setStringList(names);
}

std::vector<std::string> FileList::selectedNames() const {
  QModelIndexList rows = selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end());
  std::vector<std::string> names;
  for (const QModelIndex& row : rows) names.push_back(fromControl(row.data().toString()));
  return names;
}

}  // namespace platform::desktop
