#include "browser/ui/DrawnMenu.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <functional>

#include "browser/ui/ApplyLayout.h"

namespace browser {
namespace {

constexpr int entryHeight = 195;  // twips
constexpr int border = 3;         // pixels around the entries

/// The mouse is the menu's business, so that it can go from one menu into another; so are the keys.
class MenuLabel : public QPushButton {
 public:
  using QPushButton::QPushButton;
  void setLit(bool lit) {
    lit_ = lit;
    update();
  }
  void onReached(std::function<void()> deed) { reached_ = std::move(deed); }
  QColor inkColour() const {
    const bool plain = !lit_ || !isEnabled();
    return palette().color(plain ? QPalette::ButtonText : QPalette::HighlightedText);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override { event->ignore(); }
  void keyReleaseEvent(QKeyEvent* event) override { event->ignore(); }
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(lit_ ? QPalette::Highlight : QPalette::Button));
    painter.setPen(inkColour());
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());
  }

  /// An assistive tool goes to an entry by giving it the focus.
  void focusInEvent(QFocusEvent* event) override {
    QPushButton::focusInEvent(event);
    if (event->reason() == Qt::OtherFocusReason) reached_();
  }

 private:
  bool lit_ = false;
  std::function<void()> reached_;
};

/// A small line drawing in the colour of its entry's text.
class Mark : public QLabel {
 public:
  /// Points within a square of side 1.
  Mark(const char* name, QPolygonF line, MenuLabel* entry) : QLabel(entry), line_(std::move(line)) {
    setObjectName(QLatin1String(name));
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(static_cast<const MenuLabel*>(parentWidget())->inkColour(), 1.8));
    painter.drawPolyline(QTransform::fromScale(width(), height()).map(line_));
  }

 private:
  QPolygonF line_;
};

QPolygonF checkMark() { return {{{0.2, 0.55}, {0.42, 0.78}, {0.82, 0.25}}}; }
QPolygonF arrowRight() { return {{{0.35, 0.25}, {0.65, 0.5}, {0.35, 0.75}}}; }

double scaleFor(const QFontMetricsF& font, const std::vector<DrawnMenu::Entry>& entries, int width) {
  double needed = font.height() / (entryHeight * plainPixelsPerTwip);
  for (const DrawnMenu::Entry& entry : entries) {
    const double text = font.horizontalAdvance(QLatin1String(entry.caption) + QStringLiteral("  "));
    needed = std::max(needed, text / (width * plainPixelsPerTwip));
  }
  return plainPixelsPerTwip * std::max(1.0, needed);
}

}  // namespace

DrawnMenu::DrawnMenu(const char* name, std::vector<Entry> entries, int width, std::vector<int> separators,
                     QWidget* parent, DrawnMenu* opener)
    : QWidget(opener != nullptr ? opener : parent, Qt::Popup | Qt::FramelessWindowHint),
      entries_(std::move(entries)),
      separators_(std::move(separators)),
      opener_(opener) {
  setObjectName(QLatin1String(name));
  setAccessibleName(tr("Menu"));
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_QuitOnClose, false);
  setMouseTracking(true);
  scale_ = opener != nullptr ? opener->scale() : scaleFor(QFontMetricsF(font()), entries_, width);
  int bottom = 0;
  for (const Entry& entry : entries_) {
    addEntry(entry, width);
    bottom = std::max(bottom, button(entry.index)->geometry().bottom() + 1);
  }
  setFixedSize(qRound(width * scale_) + 2 * border, bottom + border);
  // Once the windows have settled: a cascade that closes leaves none with the focus for a moment.
  connect(qApp, &QGuiApplication::focusWindowChanged, this, &DrawnMenu::focusMoved, Qt::QueuedConnection);
}

void DrawnMenu::addEntry(const Entry& entry, int width) {
  auto* const label = new MenuLabel(QLatin1String(entry.caption), this);
  label->setObjectName(QStringLiteral("mnuRightClick_%1").arg(entry.index));
  label->setAccessibleName(QString::fromLatin1(entry.caption).trimmed());
  label->setAttribute(Qt::WA_TransparentForMouseEvents);
  label->onReached([this, index = entry.index] {
    light(index);
    entered(index);
  });
  const int height = qRound(entryHeight * scale_);
  label->setGeometry(border, border + qRound(entry.top * scale_), qRound(width * scale_), height);
  const QByteArray name = QByteArrayLiteral("imageCheck_") + QByteArray::number(entry.index);
  auto* const check = new Mark(name, checkMark(), label);
  check->setGeometry(2, 0, height, height);
  check->setVisible(entry.checked);
  if (entry.arrow == nullptr) return;
  auto* const arrow = new Mark(entry.arrow, arrowRight(), label);
  arrow->setGeometry(label->width() - height, 0, height, height);
}

QAbstractButton* DrawnMenu::button(int index) const {
  return findChild<QAbstractButton*>(QStringLiteral("mnuRightClick_%1").arg(index),
                                     Qt::FindDirectChildrenOnly);
}

QRect DrawnMenu::rectOf(int index) const { return button(index)->geometry(); }

void DrawnMenu::openAt(QPoint corner) {
  const QScreen* const screen = QGuiApplication::screenAt(corner);
  const QRect room = (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
  if (corner.x() + width() > room.right() + 1)
    corner.rx() -= width() + (opener_ != nullptr ? opener_->width() : 0);
  corner.ry() = std::min(corner.y(), room.bottom() + 1 - height());
  move(std::max(corner.x(), room.left()), std::max(corner.y(), room.top()));
  show();
}

void DrawnMenu::openBeside(DrawnMenu& menu, int index) {
  menu.openAt(pos() + QPoint(width(), rectOf(index).top() - border));
}

void DrawnMenu::closeAll() {
  if (opener_ != nullptr) return opener_->closeAll();
  for (DrawnMenu* const menu : findChildren<DrawnMenu*>()) menu->close();
  close();
}

/// With another window, nobody chooses here any more. A menu itself need not be the focus window.
void DrawnMenu::focusMoved() {
  if (opener_ != nullptr || !isVisible()) return;
  const QWindow* const focused = QGuiApplication::focusWindow();
  const auto isOurs = [focused](const QWidget* window) { return window->windowHandle() == focused; };
  const QList<DrawnMenu*> cascades = findChildren<DrawnMenu*>();
  const bool ours = isOurs(this) || isOurs(parentWidget()->window()) ||
                    std::any_of(cascades.begin(), cascades.end(), isOurs);
  if (focused == nullptr || !ours) closeAll();
}

DrawnMenu* DrawnMenu::menuAt(QPoint global) {
  for (DrawnMenu* menu = this; menu != nullptr; menu = menu->opener_)
    if (menu->geometry().contains(global)) return menu;
  return nullptr;
}

int DrawnMenu::entryAt(QPoint local) const {
  for (const Entry& entry : entries_)
    if (rectOf(entry.index).contains(local)) return entry.index;
  return none;
}

void DrawnMenu::light(int index) {
  menuIndex_ = index;
  for (const Entry& entry : entries_)
    static_cast<MenuLabel*>(button(entry.index))->setLit(entry.index == index);
  if (index != none) button(index)->setFocus(Qt::PopupFocusReason);
}

void DrawnMenu::mouseMoveEvent(QMouseEvent* event) {
  const QPoint at = event->globalPosition().toPoint();
  DrawnMenu* const menu = menuAt(at);
  const int index = menu == nullptr ? none : menu->entryAt(menu->mapFromGlobal(at));
  if (index == none) return;
  menu->light(index);
  menu->entered(index);
}

void DrawnMenu::mousePressEvent(QMouseEvent* event) {
  if (menuAt(event->globalPosition().toPoint()) == nullptr) closeAll();
}

void DrawnMenu::mouseReleaseEvent(QMouseEvent* event) {
  const QPoint at = event->globalPosition().toPoint();
  DrawnMenu* const menu = menuAt(at);
  if (menu != nullptr) menu->perform(menu->entryAt(menu->mapFromGlobal(at)));
}

void DrawnMenu::perform(int index) {
  if (index != none) button(index)->click();  // nothing where it is disabled
}

void DrawnMenu::step(int by) {
  std::vector<int> order;
  for (const Entry& entry : entries_)
    if (entry.byKeys && button(entry.index)->isEnabled()) order.push_back(entry.index);
  if (order.empty()) return;
  const auto now = std::find(order.begin(), order.end(), menuIndex_);
  const auto count = static_cast<std::ptrdiff_t>(order.size());
  const auto next = now == order.end() ? 0 : (now - order.begin() + by + count) % count;
  light(order[static_cast<std::size_t>(next)]);
}

void DrawnMenu::keyPressEvent(QKeyEvent* event) {
  const bool cascaded = opener_ != nullptr;
  switch (event->key()) {
    case Qt::Key_Up:
      return step(-1);
    case Qt::Key_Down:
      return step(1);
    case Qt::Key_Right:
      return cascaded ? step(1) : entered(menuIndex_);
    case Qt::Key_Left:
      if (cascaded) close();
      return;
    case Qt::Key_Escape:
      close();
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return perform(menuIndex_);
    default:
      return;  // no key goes past an open menu
  }
}

void DrawnMenu::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().brush(QPalette::Button));
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  for (const int top : separators_) {
    const int y = border + qRound(top * scale_);
    painter.drawLine(border, y, width() - 1 - border, y);
  }
}

}  // namespace browser
