#include "browser/ui/SelectionSize.h"

#include <QCursor>
#include <QHelpEvent>
#include <QToolTip>

#include "browser/SizeText.h"
#include "browser/ui/NumberTexts.h"

namespace browser {
namespace {

constexpr int lookEvery = 100;  // milliseconds

}  // namespace

SelectionSize::SelectionSize(const platform::DriveTable& drives, const runtime::Selection& selection,
                             const PaneSelection& changes, const platform::desktop::FolderList& folders,
                             QLabel& label)
    : QObject(&label), drives_(drives), selection_(selection), folders_(folders), label_(label) {
  look_.setInterval(lookEvery);
  connect(&look_, &QTimer::timeout, this, &SelectionSize::showSize);
  connect(&changes, &PaneSelection::changed, this, &SelectionSize::forget);
  label_.installEventFilter(this);
}

bool SelectionSize::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QObject::eventFilter(watched, event);
  if (!count_ || count_->soFar().ended) count();
  showSize();
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), label_.toolTip(), &label_);
  return true;
}

void SelectionSize::count() {
  const std::vector<std::string>& selected = selection_.selectedPaths;
  count_.emplace(drives_, selected.empty() ? std::vector{folders_.path()} : selected);
  look_.start();
}

void SelectionSize::forget() {
  count_.reset();
  look_.stop();
  label_.setToolTip({});
  label_.setAccessibleDescription({});
}

void SelectionSize::showSize() {
  const CountedSize size = count_->soFar();
  if (size.ended) look_.stop();
  const std::string text = formatFSOSize(size.bytes, numberTexts(locale_));
  const QString tip = QString::fromStdString(size.ended ? text : "Counting.. " + text);
  if (QToolTip::isVisible() && QToolTip::text() == label_.toolTip())
    QToolTip::showText(QCursor::pos(), tip, &label_);
  label_.setToolTip(tip);
  label_.setAccessibleDescription(tip);
}

}  // namespace browser
