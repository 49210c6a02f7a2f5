#pragma once

#include <QStyledItemDelegate>

namespace browser {

/// Draws rows, and lets a row's name be edited in a box over it: Enter takes what was typed, Escape leaves
/// the name. The keys of the box are not heard by what lies below.
class NameEditor : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* box, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace browser
