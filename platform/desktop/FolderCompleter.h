#pragma once

#include <QCompleter>
#include <QLineEdit>
#include <QStringListModel>
#include <functional>
#include <string>

#include "platform/DriveTable.h"

namespace platform::desktop {

/// Offers the folders that a path in a text box may go on with, in the form in which it is typed
/// (TypedPath.h). Those whose name begins with a dot are offered once a dot is typed.
class FolderCompleter : public QCompleter {
  Q_OBJECT

 public:
  /// It belongs to the box. Relative paths begin at what `folder` tells (Windows form).
  FolderCompleter(QLineEdit& box, const DriveTable& drives, std::function<std::string()> folder);

 private:
  void read(const QString& typed);
  QStringList folders() const;

  const DriveTable& drives_;
  std::function<std::string()> folder_;
  QStringListModel texts_;
  std::string base_;  // where they began when they were read
  QString front_;     // of the texts that are offered: up to the last separator
  bool hidden_ = false;
};

}  // namespace platform::desktop
