#pragma once

#include <QLineEdit>

namespace download {

/// A box that hands on what is pasted into it or dropped onto it, instead of taking it.
class AddressBox : public QLineEdit {
  Q_OBJECT

 public:
  using QLineEdit::QLineEdit;

 public slots:
  void paste();  ///< the context menu finds it by this name

 signals:
  void pasted(const QString& text);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void dropEvent(QDropEvent* event) override;
};

}  // namespace download
