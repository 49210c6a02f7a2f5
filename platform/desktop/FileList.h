#pragma once

#include <QListView>
#include <QStringListModel>
#include <string>
#include <vector>

#include "platform/DriveTable.h"

namespace platform::desktop {

/// The plain list of the files (not the folders) of a folder, by name. Several can be selected. The folder is
/// read when the list shows.
class FileList : public QListView {
  Q_OBJECT

 public:
  explicit FileList(QWidget* parent = nullptr);

  void setDrives(const DriveTable& drives) { drives_ = &drives; }  ///< must outlive the list
  void setPath(const std::string& folder);                         ///< empty for one that cannot be read
  std::vector<std::string> selectedNames() const;                  ///< in list order

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void readFolder();

  const DriveTable* drives_ = nullptr;
  std::string folder_;
  QStringListModel* names_;  // held form
};

}  // namespace platform::desktop
