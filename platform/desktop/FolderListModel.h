#pragma once

#include <QAbstractListModel>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"

namespace platform::desktop {

/// The rows of a folder list: the parts of a path, root first, then the subfolders of its last part by name
/// without case. Texts are made when they are shown, and the subfolders are read only while somebody sees
/// them.
class FolderListModel : public QAbstractListModel {
  Q_OBJECT

 public:
  static constexpr int DepthRole = Qt::UserRole;  ///< levels below the root

  using QAbstractListModel::QAbstractListModel;
  void setDrives(const DriveTable& drives) { drives_ = &drives; }
  void setSeen(bool seen) { seen_ = seen; }
  void setHiddenShown(bool shown) { hiddenShown_ = shown; }  ///< subfolders, from the next reading on
  bool hiddenShown() const { return hiddenShown_; }

  /// Shows another path (`C:\pkg\a`). False when it names no folder that can be read: nothing changes.
  bool setPath(const std::string& path);
  void readAgain();  ///< the subfolders; none when the folder cannot be read any more

  std::string path() const { return pathOf(openRow()); }
  int openRow() const { return static_cast<int>(parts_.size()) - 1; }  ///< of the path's last part
  std::string pathOf(int row) const;                                   ///< empty for a row that there is not
  int rowOf(std::string_view path) const;                              ///< -1: none

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  std::optional<std::vector<std::string>> subfolders(const std::vector<std::string>& parts) const;
  bool leftOut(const Files::Entry& entry, const std::string& folder) const;
  const std::string& nameOf(int row) const;

  const DriveTable* drives_ = nullptr;
  std::vector<std::string> parts_;       // "C:", "pkg", "a"
  std::vector<std::string> subfolders_;  // names
  bool seen_ = false;
  bool hiddenShown_ = true;
};

/// A folder's path without a trailing backslash, except a root's: `c:/pkg\\a\.` is `C:\pkg\a`. Empty for a
/// text that does not begin with a drive.
std::string folderPath(std::string_view text);

}  // namespace platform::desktop
