#pragma once

#include <QListView>
#include <QStringListModel>
#include <string>
#include <vector>

#include "platform/DriveTable.h"

namespace platform::desktop {

/// The plain list of the files (not the folders) of a folder, by name. Several can be selected.
class FileList : public QListView {
  Q_OBJECT

 public:
  explicit FileList(QWidget* parent = nullptr);

  void setDrives(const DriveTable& drives) { drives_ = &drives; }  ///< must outlive the list
  void setPath(const std::string& folder);                         ///< empty for one that cannot be read
  std::vector<std::string> selectedNames() const;                  ///< in list order

 private:
  const DriveTable* drives_ = nullptr;
  QStringListModel* names_;  // held form
};

}  // namespace platform::desktop
