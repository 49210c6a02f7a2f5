#pragma once

#include <QComboBox>
#include <optional>
#include <string>
#include <string_view>

#include "platform/DiskSpace.h"
#include "platform/DriveTable.h"

namespace platform::desktop {

/// The drop-down list of the drives: "C: [user]", the last name of the drive's host folder in brackets. The
/// table is read again when it drops down. A chosen drive that has gone stays until another is chosen. It
/// works also while a job holds the gate: whoever is told of the change remembers it. Its tip tells how much
/// room the chosen drive has, once the drive has answered.
class DriveList : public QComboBox {
  Q_OBJECT

 public:
  explicit DriveList(QWidget* parent = nullptr);

  /// Shows these drives; the first is chosen, without a signal. They must outlive the list.
  void setDrives(DriveTable& drives);

  std::string drive() const;  ///< "C:", empty before setDrives
  /// Chooses the drive that the text begins with ("D:", "d:\", "D:\pkg\a"). False for one that is not in the
  /// table, even after reading it again: the old one stays.
  bool setDrive(std::string_view text);

 signals:
  void driveChanged();  ///< another drive is chosen, by the user or by the program

 public slots:
  void showPopup() override;

 protected:
  bool event(QEvent* event) override;

 private:
  void askForSpace(QPoint at);
  void showSpace(const QString& drive, const std::optional<DiskSpace>& space, QPoint at);
  void readAgain();
  void fill();
  void noteChange();

  DriveTable* drives_ = nullptr;
  QString known_;  // the drive that was last told of
  QString asked_;  // the drive whose answer is awaited
};

}  // namespace platform::desktop
