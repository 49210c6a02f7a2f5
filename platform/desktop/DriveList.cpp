#include "platform/desktop/DriveList.h"

#include <QSignalBlocker>

#include "platform/HeldName.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Text.h"

namespace platform::desktop {
namespace {

QString driveOf(const QString& text) { return text.left(2); }

QString textOf(const DriveTable::Drive& drive) {
  const std::string& folder = drive.hostFolder;
  const std::string last = folder.size() > 1 ? holdName(folder.substr(folder.rfind('/') + 1)) : "/";
  return QLatin1Char(drive.letter) + QStringLiteral(": [%1]").arg(toShown(last));
}

/// The row of a drive ("C:"), or -1.
int rowOf(const QComboBox& list, const QString& drive) { return list.findText(drive, Qt::MatchStartsWith); }

}  // namespace

DriveList::DriveList(QWidget* parent) : QComboBox(parent) {
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);  // a long name is elided
  connect(this, &QComboBox::currentIndexChanged, this, &DriveList::noteChange);
}

void DriveList::setDrives(DriveTable& drives) {
  drives_ = &drives;
  setWhileBusy(this, WhileBusy::Remembered);
  fill();
}

std::string DriveList::drive() const { return fromControl(driveOf(currentText())); }

bool DriveList::setDrive(std::string_view text) {
  const QString wanted = driveOf(toControl(text.substr(0, 2))).toUpper();
  if (wanted.size() != 2 || wanted[1] != QLatin1Char(':')) return false;
  if (rowOf(*this, wanted) < 0) readAgain();
  const int row = rowOf(*this, wanted);
  if (row < 0) return false;
  setCurrentIndex(row);
  return true;
}

void DriveList::showPopup() {
  readAgain();
  QComboBox::showPopup();
}

void DriveList::readAgain() {
  if (drives_ == nullptr) return;
  drives_->readAgain();
  fill();
}

void DriveList::fill() {
  const QSignalBlocker silent(this);
  const QString chosen = currentText();
  clear();
  for (const DriveTable::Drive& drive : drives_->drives()) addItem(textOf(drive));
  if (!chosen.isEmpty() && rowOf(*this, driveOf(chosen)) < 0) addItem(chosen);
  setCurrentIndex(chosen.isEmpty() ? 0 : rowOf(*this, driveOf(chosen)));
  known_ = driveOf(currentText());
}

void DriveList::noteChange() {
  const QString now = driveOf(currentText());
  if (now.isEmpty() || now == known_) return;
  known_ = now;
  emit driveChanged();
}

}  // namespace platform::desktop
