#include "browser/ui/PaneViews.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "browser/ui/NameEditor.h"
#include "platform/desktop/Handlers.h"
#include "platform/desktop/Locale.h"
#include "platform/desktop/Text.h"

namespace browser {
namespace {

constexpr int smallIcon = 16;
constexpr int largeIcon = 32;
constexpr int margin = 12;
constexpr std::time_t wideTime = 1798671480;  // December 30, 2026, in the evening: as wide as they get

bool isPaneKey(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Backspace; }

bool isSideButton(Qt::MouseButton button) { return button == Qt::BackButton || button == Qt::ForwardButton; }

bool isPlainArrow(const QKeyEvent& event) {
  if ((event.modifiers() & ~Qt::KeypadModifier) != 0) return false;
  switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
      return true;
    default:
      return false;
  }
}

/// A view that tells the pane of released keys and buttons, after it has handled them itself.
template <typename View>
class HeardView : public View {
 public:
  explicit HeardView(PaneViews& pane) : View(&pane), pane_(pane) {}

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (!event->isAutoRepeat()) pressedKey_ = event->key();
    if (isPaneKey(event->key()) || pane_.busy() || startsSelection(*event))
      event->accept();
    else
      View::keyPressEvent(event);
  }
  void keyReleaseEvent(QKeyEvent* event) override {
    if (!pane_.busy()) View::keyReleaseEvent(event);
    if (!event->isAutoRepeat() && std::exchange(pressedKey_, 0) == event->key())
      emit pane_.keyReleased(event->key());
  }
  /// A name is dragged; from all other places rows are selected.
  void mousePressEvent(QMouseEvent* event) override {
    if (isSideButton(event->button())) return emit pane_.sideButtonPressed(event->button());
    pressedAt_ = event->position().toPoint();
    const QModelIndex pressed = this->indexAt(pressedAt_);
    this->setDragEnabled(event->button() == Qt::LeftButton && pressed.isValid() && pressed.column() == 0);
    if (!pane_.busy()) View::mousePressEvent(event);
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!pane_.busy()) View::mouseMoveEvent(event);
  }
  void startDrag(Qt::DropActions) override { emit pane_.dragBegun(); }
  /// A second click of another button is a click like the first.
  void mouseDoubleClickEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return mousePressEvent(event);
    if (!pane_.busy()) return View::mouseDoubleClickEvent(event);
    const QModelIndex index = this->indexAt(event->position().toPoint());
    if (index.isValid()) emit pane_.rowDoubleClicked(index.row());
  }
  /// A rubber band that ends in empty space keeps what it selected.
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (isSideButton(event->button())) return;
    View::mouseReleaseEvent(event);
    const QPoint at = event->position().toPoint();
    const int row = this->indexAt(at).row();
    if (row >= 0 || (at - pressedAt_).manhattanLength() < QApplication::startDragDistance())
      emit pane_.mouseReleased(row, event->button(), event->globalPosition().toPoint());
  }
  void resizeEvent(QResizeEvent* event) override {
    View::resizeEvent(event);
    pane_.fitNames();
  }
  void paintEvent(QPaintEvent* event) override {
    View::paintEvent(event);
    if (pane_.notice().isEmpty()) return;
    QPainter painter(this->viewport());
    painter.setPen(this->palette().color(QPalette::Text));
    painter.drawText(this->viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, pane_.notice());
  }
  void contextMenuEvent(QContextMenuEvent* event) override {
    if (event->reason() == QContextMenuEvent::Keyboard) emit pane_.menuKeyPressed(placeOfCurrentRow());
  }

 private:
  QPoint placeOfCurrentRow() const {
    const QRect row = this->visualRect(this->currentIndex()) & this->viewport()->rect();
    return this->viewport()->mapToGlobal(row.isEmpty() ? QPoint() : row.bottomLeft() + QPoint(smallIcon, 1));
  }
  /// With nothing selected an arrow selects the current row; moving on would leave out the first.
  bool startsSelection(const QKeyEvent& event) {
    const int last = this->model()->rowCount() - 1;
    if (last < 0 || this->selectionModel()->hasSelection() || !isPlainArrow(event)) return false;
    const int current = std::max(0, this->currentIndex().row());
    const int row = event.key() == Qt::Key_Home ? 0 : event.key() == Qt::Key_End ? last : current;
    this->selectionModel()->setCurrentIndex(this->model()->index(row, 0),
                                            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return true;
  }

  PaneViews& pane_;
  int pressedKey_ = 0;
  QPoint pressedAt_;
};

/// Every item fills its cell, so that no text need be measured.
class CellDelegate : public NameEditor {
 public:
  explicit CellDelegate(QListView* view) : NameEditor(view), view_(view) {}
  QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override { return view_->gridSize(); }

 private:
  QListView* view_;
};

/// Its window's focus, also while the user is in another window.
bool standsOn(const QWidget& widget) { return widget.window()->focusWidget() == &widget; }

void prepare(QAbstractItemView& view, const char* name) {
  view.setObjectName(QLatin1String(name));
  view.setAccessibleName(QStringLiteral("Files and folders"));
  view.setSelectionMode(QAbstractItemView::ExtendedSelection);
  view.setSelectionBehavior(QAbstractItemView::SelectRows);
  view.setEditTriggers(QAbstractItemView::NoEditTriggers);
  view.setIconSize(QSize(smallIcon, smallIcon));
}

}  // namespace

PaneViews::PaneViews(QWidget* parent) : QStackedWidget(parent) {
  details_ = new HeardView<QTreeView>(*this);
  icons_ = new HeardView<QListView>(*this);
  buildDetails();
  buildIcons();
  for (QAbstractItemView* view :
       {static_cast<QAbstractItemView*>(details_), static_cast<QAbstractItemView*>(icons_)}) {
    addWidget(view);
    connect(view, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& index) { emit rowDoubleClicked(index.row()); });
  }
}

/// A header takes no keys: Ctrl+1 to Ctrl+4 stand for clicks on it.
void PaneViews::buildDetails() {
  prepare(*details_, "DirPane");
  details_->setItemDelegate(new NameEditor(details_));
  details_->setRootIsDecorated(false);
  details_->setItemsExpandable(false);
  details_->setUniformRowHeights(true);
  details_->setAllColumnsShowFocus(true);
  QHeaderView* header = details_->header();
  header->setSectionsClickable(true);
  header->setSectionsMovable(false);
  connect(header, &QHeaderView::sectionClicked, this,
          [this](int section) { emit columnClicked(section + 1); });
  for (int column = 1; column <= 4; ++column) {
    auto* keys = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + column)), this);
    keys->setContext(Qt::WidgetWithChildrenShortcut);
    connect(keys, &QShortcut::activated, this, [this, column] { emit columnClicked(column); });
  }
}

void PaneViews::buildIcons() {
  prepare(*icons_, "DirPaneIcons");
  icons_->setItemDelegate(new CellDelegate(icons_));
  icons_->setUniformItemSizes(true);
  icons_->setMovement(QListView::Static);
  icons_->setResizeMode(QListView::Adjust);
  icons_->setSelectionRectVisible(true);
  icons_->setWrapping(true);
}

void PaneViews::setModel(DirPaneModel& model) {
  details_->setModel(&model);
  icons_->setModel(&model);
  delete icons_->selectionModel();
  icons_->setSelectionModel(details_->selectionModel());
  connect(details_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &PaneViews::selectionChanged);
  const auto wide = [this](const QString& text) {
    return fontMetrics().horizontalAdvance(text + QStringLiteral("MM"));
  };
  const std::string someTime = platform::desktop::Locale().dateTimeText(wideTime);
  QHeaderView& header = *details_->header();
  header.setMinimumSectionSize(wide(QStringLiteral("Size >")));
  header.resizeSection(1, wide(QStringLiteral("Permissions >")));
  header.resizeSection(2, wide(QStringLiteral("99999999 KB")));
  header.resizeSection(3, wide(QString::fromStdString(someTime)));
  header.setStretchLastSection(false);
  header.setSectionResizeMode(0, QHeaderView::Fixed);
  connect(&header, &QHeaderView::sectionResized, this, [this](int section) {
    if (section != 0) fitNames();
  });
}

/// Names have what the other columns leave, and enough to be told apart.
void PaneViews::fitNames() {
  constexpr int leastLetters = 16;
  QHeaderView& header = *details_->header();
  const int others = header.length() - header.sectionSize(0);
  header.resizeSection(
      0, std::max(leastLetters * fontMetrics().averageCharWidth(), details_->viewport()->width() - others));
}

void PaneViews::setBusy(const platform::Busy& busy) {
  busy_ = &busy;
  setWhileBusy(this, platform::desktop::WhileBusy::Remembered);
}

void PaneViews::setListing(bool listing) {
  if (listing) {
    const bool focused = standsOn(view());
    setFocusProxy(nullptr);
    if (focused) setFocus();
  }
  details_->setEnabled(!listing);
  icons_->setEnabled(!listing);
  if (listing) return;
  const bool waited = standsOn(*this);
  setFocusProxy(currentWidget());
  if (waited) view().setFocus();
}

void PaneViews::keyReleaseEvent(QKeyEvent* event) {
  if (listing() && event->key() == Qt::Key_Backspace && !event->isAutoRepeat())
    emit keyReleased(event->key());
}

QAbstractItemView& PaneViews::view() const { return *static_cast<QAbstractItemView*>(currentWidget()); }

void PaneViews::setViewMode(int mode) {
  const bool large = mode == 0;
  const int letter = fontMetrics().averageCharWidth();
  if (mode != 3) {
    icons_->setViewMode(large ? QListView::IconMode : QListView::ListMode);
    icons_->setMovement(QListView::Static);
    icons_->setFlow(large ? QListView::LeftToRight : QListView::TopToBottom);
    icons_->setWrapping(true);
    icons_->setWordWrap(large);
    icons_->setIconSize(large ? QSize(largeIcon, largeIcon) : QSize(smallIcon, smallIcon));
    const int line = fontMetrics().lineSpacing();
    icons_->setGridSize(large ? QSize(18 * letter, largeIcon + 2 * line + 12)
                              : QSize(30 * letter, std::max(smallIcon, line) + 6));
  }
  const bool focused = standsOn(view());
  setCurrentWidget(mode == 3 ? static_cast<QWidget*>(details_) : icons_);
  if (!listing()) setFocusProxy(currentWidget());
  if (focused) view().setFocus();
}

void PaneViews::setNotice(const std::string& text) {
  if (const QString notice = platform::desktop::toShown(text); std::exchange(notice_, notice) == notice)
    return;
  for (QAbstractItemView* shown :
       {static_cast<QAbstractItemView*>(details_), static_cast<QAbstractItemView*>(icons_)}) {
    shown->setAccessibleDescription(notice_);
    shown->viewport()->update();
  }
}

bool PaneViews::editing() const { return view().viewport()->findChild<QLineEdit*>() != nullptr; }

int PaneViews::topRow() const {
  const bool sideways = currentWidget() == icons_ && view().horizontalScrollBar()->value() > 0;
  return sideways || view().verticalScrollBar()->value() > 0 ? view().indexAt(QPoint(1, 1)).row() : -1;
}

PaneViews::Place::Place(PaneViews& pane)
    : scrolled_(pane), top_(pane.view().model()->index(pane.topRow(), 0)) {}

PaneViews::Place::~Place() { scrolled_.restore(top_.row()); }

PaneViews::Scrolled::Scrolled(const PaneViews& pane)
    : pane_(pane),
      view_(pane.view()),
      place_(view_.horizontalScrollBar()->value(), view_.verticalScrollBar()->value()) {}

/// To come to a row is to go sideways, too, which the details need not.
void PaneViews::Scrolled::restore(int top) const {
  if (&view_ != &pane_.view()) return;
  view_.verticalScrollBar()->setValue(place_.y());
  view_.horizontalScrollBar()->setValue(place_.x());
  if (top < 0) return;
  view_.scrollTo(view_.model()->index(top, 0), QAbstractItemView::PositionAtTop);
  if (&view_ == pane_.details_) view_.horizontalScrollBar()->setValue(place_.x());
}

int PaneViews::currentRow() const { return view().currentIndex().row(); }

int PaneViews::chosenRow() const {
  const std::vector<int> selected = selectedRows();
  if (selected.empty()) return -1;
  return std::binary_search(selected.begin(), selected.end(), currentRow()) ? currentRow() : selected.front();
}

std::vector<int> PaneViews::selectedRows() const {
  std::vector<int> rows;
  const QItemSelection selection = view().selectionModel()->selection();
  for (const QItemSelectionRange& range : selection)
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

void PaneViews::selectRows(const std::vector<int>& wanted) {
  std::vector<int> rows = wanted;
  std::sort(rows.begin(), rows.end());
  QItemSelection selection;
  const QAbstractItemModel& model = *view().model();
  for (std::size_t first = 0, last = 0; first < rows.size(); first = ++last) {
    while (last + 1 < rows.size() && rows[last + 1] <= rows[last] + 1) ++last;
    selection.append(
        QItemSelectionRange(model.index(rows[first], 0), model.index(rows[last], model.columnCount() - 1)));
  }
  view().selectionModel()->select(selection, QItemSelectionModel::Select);
}

void PaneViews::makeCurrent(int row) {
  view().selectionModel()->setCurrentIndex(view().model()->index(row, 0), QItemSelectionModel::NoUpdate);
}

void PaneViews::goTo(int row) {
  makeCurrent(row);
  view().scrollTo(view().model()->index(row, 0));
}

void PaneViews::goToSelected() {
  const std::vector<int> rows = selectedRows();
  if (!rows.empty()) goTo(rows.front());
}

void PaneViews::clearCurrentRow() { view().selectionModel()->clearCurrentIndex(); }

void PaneViews::clearSelected() {
  clearCurrentRow();
  view().selectionModel()->clearSelection();
}

}  // namespace browser
