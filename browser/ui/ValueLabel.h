#pragma once

#include "platform/desktop/PathLabel.h"

namespace browser {

/// A PathLabel whose text can be selected with the mouse. One whose middle is left out is selected as a
/// whole.
class ValueLabel : public platform::desktop::PathLabel {
  Q_OBJECT

 public:
  explicit ValueLabel(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  bool isCut() const;
};

}  // namespace browser
