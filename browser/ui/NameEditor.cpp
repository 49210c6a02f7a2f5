#include "browser/ui/NameEditor.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace browser {

QWidget* NameEditor::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
  QWidget* const box = QStyledItemDelegate::createEditor(parent, option, index);
  if (box == nullptr) return nullptr;
  box->setObjectName(QStringLiteral("txtName"));
  box->setAccessibleName(QStringLiteral("New name"));
  if (auto* const line = qobject_cast<QLineEdit*>(box)) line->setFrame(true);  // Qt's style leaves it out
  return box;
}

/// Below a large icon there is only as much room as the name takes; the box gets all of the cell.
void NameEditor::updateEditorGeometry(QWidget* box, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const {
  QStyledItemDelegate::updateEditorGeometry(box, option, index);
  if (option.decorationPosition == QStyleOptionViewItem::Top)
    box->setGeometry(option.rect.left(), box->y(), option.rect.width(), box->height());
}

/// Qt itself would pass Enter on to the view and let Tab edit the next row.
bool NameEditor::eventFilter(QObject* watched, QEvent* event) {
  auto* const box = qobject_cast<QWidget*>(watched);
  if (box == nullptr || event->type() != QEvent::KeyPress)
    return QStyledItemDelegate::eventFilter(watched, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      emit commitData(box);
      emit closeEditor(box);
      return true;
    default:
      return QStyledItemDelegate::eventFilter(watched, event);
  }
}

}  // namespace browser
