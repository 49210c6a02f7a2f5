#include "platform/desktop/DriveList.h"

#include <QFutureWatcher>
#include <QHelpEvent>
#include <QPromise>
#include <QSignalBlocker>
#include <QToolTip>
#include <memory>
#include <system_error>

#include "platform/BackgroundThread.h"
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

using Space = std::optional<DiskSpace>;

/// Done once the drive has answered, which a dead one never does. An empty answer where nobody could be sent
/// to ask.
QFuture<Space> spaceOn(const std::string& hostFolder) {
  auto promise = std::make_shared<QPromise<Space>>();
  promise->start();
  const QFuture<Space> answer = promise->future();
  try {
    startInBackground([promise, hostFolder] {
      promise->addResult(diskSpace(hostFolder));
      promise->finish();
    });
  } catch (const std::system_error&) {
    promise->addResult(Space());
    promise->finish();
  }
  return answer;
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

bool DriveList::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QComboBox::event(event);
  askForSpace(static_cast<QHelpEvent*>(event)->globalPos());
  return true;
}

void DriveList::askForSpace(QPoint at) {
  const auto host = drives_ == nullptr ? std::nullopt : drives_->toHost(drive());
  const QString chosen = currentText();
  if (!host || chosen == asked_) return;
  asked_ = chosen;
  auto* const answer = new QFutureWatcher<Space>(this);
  connect(answer, &QFutureWatcher<Space>::finished, this, [this, answer, chosen, at] {
    showSpace(chosen, answer->result(), at);
    answer->deleteLater();
  });
  answer->setFuture(spaceOn(*host));
}

/// Unless the pointer or the choice have moved on meanwhile.
void DriveList::showSpace(const QString& drive, const Space& space, QPoint at) {
  if (asked_ == drive) asked_.clear();
  if (!space || !underMouse() || drive != currentText()) return;
  const auto sizeText = [](std::uint64_t bytes) {
    return QLocale::system().formattedDataSize(static_cast<qint64>(bytes), 1,
                                               QLocale::DataSizeTraditionalFormat);
  };
  const QString text =
      QStringLiteral("%1\n%2 free of %3").arg(drive, sizeText(space->free), sizeText(space->whole));
  QToolTip::showText(at, toPlainTip(fromControl(text)), this);
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
