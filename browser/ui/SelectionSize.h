#pragma once

#include <QLabel>
#include <QTimer>
#include <optional>

#include "browser/SizeCount.h"
#include "browser/ui/PaneSelection.h"
#include "platform/desktop/Locale.h"

namespace browser {

/// The tip of a label says how large the selection is. It is counted when the tip is asked for, and the count
/// ends when something else is selected.
class SelectionSize : public QObject {
  Q_OBJECT

 public:
  /// All are lent. Where nothing is selected the open folder counts.
  SelectionSize(const platform::DriveTable& drives, const runtime::Selection& selection,
                const PaneSelection& changes, const platform::desktop::FolderList& folders, QLabel& label);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void count();
  void forget();
  void showSize();

  const platform::DriveTable& drives_;
  const runtime::Selection& selection_;
  const platform::desktop::FolderList& folders_;
  QLabel& label_;
  platform::desktop::Locale locale_;
  std::optional<SizeCount> count_;
  QTimer look_;
};

}  // namespace browser
