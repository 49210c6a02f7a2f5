#include "platform/desktop/FolderList.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "platform/desktop/Handlers.h"

namespace platform::desktop {
namespace {

/// Indents a row by its depth, by half the list's width at most, so that a deep folder's name can be read.
class IndentingDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const int step = option->decorationSize.width();
    const int indent =
        std::min(index.data(FolderListModel::DepthRole).toInt() * step, option->rect.width() / 2);
    option->direction == Qt::RightToLeft ? option->rect.setRight(option->rect.right() - indent)
                                         : option->rect.setLeft(option->rect.left() + indent);
  }
};

/// Whether the list itself has a use for a key: moving the highlight and searching by letters.
bool movesHighlight(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
      return true;
    default:
      return !event.text().isEmpty() && event.text().at(0).isPrint() &&
             (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
  }
}

}  // namespace

FolderList::FolderList(QWidget* parent) : QListView(parent), model_(new FolderListModel(this)) {
  setModel(model_);
  setItemDelegate(new IndentingDelegate(this));
  setUniformItemSizes(true);
  const int iconSide = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  setIconSize(QSize(iconSide, iconSide));
  setEditTriggers(NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);  // long names are elided and have a tip
  setTextElideMode(Qt::ElideRight);
}

void FolderList::setDrives(const DriveTable& drives, Busy& busy) {
  model_->setDrives(drives);
  busy_ = &busy;
  setWhileBusy(this, WhileBusy::Remembered);
}

bool FolderList::setPath(const std::string& path) {
  const std::string wanted = folderPath(path);
  if (!wanted.empty() && wanted == this->path()) return true;
  if (!model_->setPath(path)) return false;
  highlight(model_->openRow());
  emit changed();
  return true;
}

std::string FolderList::highlighted() const {
  return currentIndex().isValid() ? model_->pathOf(currentIndex().row()) : path();
}

void FolderList::refresh() {
  const std::string before = highlighted();
  const int first = verticalScrollBar()->value();
  model_->readAgain();
  const int row = model_->rowOf(before);
  if (row >= 0 && row == currentIndex().row()) return;
  highlight(row < 0 ? model_->openRow() : row);
  verticalScrollBar()->setValue(first);
}

void FolderList::highlight(int row) {
  setCurrentIndex(model_->index(row));
  showHighlight();
}

/// In the middle where there is enough above it, so that both the way to a folder and what it holds show.
void FolderList::showHighlight() {
  const int rows = viewport()->height() / std::max(1, sizeHintForRow(0));
  scrollTo(model_->index(std::max(0, currentIndex().row() - rows / 2)), PositionAtTop);
}

/// A path set before the list had its size was scrolled for another one.
void FolderList::showEvent(QShowEvent* event) {
  QListView::showEvent(event);
  model_->setSeen(true);
  refresh();
  showHighlight();
}

void FolderList::hideEvent(QHideEvent* event) {
  QListView::hideEvent(event);
  model_->setSeen(false);
}

void FolderList::click(const std::string& path) {
  openedByClick_ = path != this->path();
  openedByClick_ ? openWhenFree(path) : emit openFolderClicked();
}

void FolderList::openWhenFree(const std::string& path) {
  const auto open = [list = QPointer<FolderList>(this), path] {
    if (!list.isNull() && !list->setPath(path)) emit list->refused(path);
  };
  busy_ == nullptr ? open() : busy_->whenFree(Busy::Width::OpenFolder, open);
}

void FolderList::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      openWhenFree(highlighted());
      break;
    case Qt::Key_Backspace:
      if (model_->openRow() > 0) openWhenFree(model_->pathOf(model_->openRow() - 1));
      break;
    default:
      movesHighlight(*event) && !busy() ? QListView::keyPressEvent(event) : event->ignore();
  }
}

void FolderList::mousePressEvent(QMouseEvent* event) {
  pressedPath_.clear();
  openedByClick_ = false;
  if (event->button() != Qt::LeftButton) return;
  if (!busy()) QListView::mousePressEvent(event);
  pressedPath_ = model_->pathOf(indexAt(event->position().toPoint()).row());
}

/// A highlight that follows the pressed pointer would open a folder that was never clicked.
void FolderList::mouseMoveEvent(QMouseEvent*) {}

void FolderList::mouseReleaseEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  if (event->button() == Qt::RightButton && viewport()->rect().contains(at)) emit rightClicked();
  if (event->button() != Qt::LeftButton) return;
  if (!busy()) QListView::mouseReleaseEvent(event);
  const std::string path = model_->pathOf(indexAt(at).row());
  if (!path.empty() && path == std::exchange(pressedPath_, {})) click(path);
}

/// When the first click opened a folder, other rows stand under the pointer by the second one.
void FolderList::mouseDoubleClickEvent(QMouseEvent* event) {
  openedByClick_ ? event->accept() : mousePressEvent(event);
}

void FolderList::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (event->reason() == QContextMenuEvent::Keyboard) emit rightClicked();
}

}  // namespace platform::desktop
