#pragma once

#include <QFrame>

namespace browser {

/// The bar between the folder list and the file pane. Dragged with the left button, or moved with the left
/// and right arrow keys. It only tells; the layout moves it.
class Divider : public QFrame {
  Q_OBJECT

 public:
  explicit Divider(QWidget* parent = nullptr);

 signals:
  void dragged(int x);  ///< the pointer's horizontal position inside the bar, pixels

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool dragging_ = false;
};

}  // namespace browser
