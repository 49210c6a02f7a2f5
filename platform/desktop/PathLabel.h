#pragma once

#include <QLabel>

namespace platform::desktop {

/// A line of plain text that may be longer than its place: its middle is then left out, and its tip tells it
/// whole.
class PathLabel : public QLabel {
  Q_OBJECT

 public:
  explicit PathLabel(QWidget* parent = nullptr);
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
};

}  // namespace platform::desktop
