#pragma once

#include <QFrame>

namespace browser {

/// The bar between the folder list and the file pane. Dragged with the left button, or moved with the left
/// and right arrow keys, Home and End. It only tells; the layout moves it. To assistive tools it is a slider
/// from 0 to 100, the percentage of its way.
class Divider : public QFrame {
  Q_OBJECT

 public:
  explicit Divider(QWidget* parent = nullptr);

  void setWay(int least, int most);  ///< of its left edge, pixels in its parent
  int percent() const;
  void movePercent(int percent);

 signals:
  void dragged(int x);  ///< the pointer's horizontal position inside the bar, pixels

 protected:
  void paintEvent(QPaintEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void dragTo(int left);

  bool dragging_ = false;
  int least_ = 0;
  int most_ = 0;
};

}  // namespace browser
