#include "platform/desktop/ProgramStyle.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPainter>
#include <utility>

#include "platform/desktop/CheckInterface.h"
#include "platform/desktop/ImageList.h"
#include "platform/desktop/ReadableColour.h"

namespace platform::desktop {
namespace {

constexpr int focusLine = 2;        // pixels; around a list
constexpr int captionLine = 1;      // around a caption; Fusion's own is hardly seen in a dark palette
constexpr double paleness = 0.35;   // of the selection colour in a list without the focus
constexpr double edgeShare = 0.45;  // of the text's colour
constexpr double visibleEdge = 1.5;
constexpr int fusionDarkens = 140;  // what this style makes its edges of the window's colour with

/// Draws with another palette, and the focus wherever it is: Qt shows that of a window's buttons only once
/// Tab or Alt was pressed there. An option cannot be copied here: only its caller knows its type.
class LentOption {
 public:
  LentOption(const QStyleOption* option, const QPalette& palette)
      : option_(const_cast<QStyleOption*>(option)),
        palette_(std::exchange(option_->palette, palette)),
        state_(option_->state) {
    if (state_.testFlag(QStyle::State_HasFocus)) option_->state |= QStyle::State_KeyboardFocusChange;
  }
  ~LentOption() {
    option_->palette = palette_;
    option_->state = state_;
  }
  LentOption(const LentOption&) = delete;
  LentOption& operator=(const LentOption&) = delete;

 private:
  QStyleOption* option_;
  QPalette palette_;
  QStyle::State state_;
};

/// One that drops down belongs to what it drops from.
bool isList(const QWidget* widget) {
  return qobject_cast<const QAbstractItemView*>(widget) != nullptr &&
         widget->window()->windowType() != Qt::Popup;
}
/// A row of a tree is drawn without the tree.
bool isRow(const QWidget* widget) {
  return widget == nullptr || qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}
bool isFocusedList(const QWidget* widget) { return isList(widget) && widget->hasFocus(); }
bool isUnfocusedList(const QWidget* widget) { return isList(widget) && !widget->hasFocus(); }

void makePale(QPalette& palette) {
  const QColor pale =
      mixedColour(palette.color(QPalette::Highlight), palette.color(QPalette::Base), paleness);
  palette.setColor(QPalette::Highlight, pale);
  palette.setColor(QPalette::HighlightedText, contrastingColour(palette.color(QPalette::Text), pale));
}

/// A selected row has one colour for all texts; its own shall be known again.
void keepColour(const QModelIndex& row, QPalette& palette) {
  const QVariant own = row.data(Qt::ForegroundRole);
  const QColor colour = own.isValid() ? own.value<QBrush>().color() : QColor();
  if (!colour.isValid() || colour.alphaF() < 1) return;
  palette.setColor(QPalette::HighlightedText, contrastingColour(colour, palette.color(QPalette::Highlight)));
}

/// Fusion makes all edges of the window's colour, which it darkens.
void showEdges(QPalette& palette) {
  const QColor edge =
      mixedColour(palette.color(QPalette::WindowText), palette.color(QPalette::Window), edgeShare);
  palette.setColor(QPalette::Window, edge.lighter(fusionDarkens));
}

void drawFocusLine(QPainter& painter, const QStyleOption& frame, int width) {
  const int before = width / 2;
  const int behind = width - before;
  painter.save();
  painter.setPen(QPen(frame.palette.highlight(), width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.drawRect(frame.rect.adjusted(before, before, -behind, -behind));
  painter.restore();
}

bool hasEdge(QStyle::PrimitiveElement element) {
  switch (element) {
    case QStyle::PE_Frame:
    case QStyle::PE_FrameLineEdit:
    case QStyle::PE_PanelLineEdit:
    case QStyle::PE_PanelButtonCommand:
    case QStyle::PE_IndicatorCheckBox:
    case QStyle::PE_IndicatorRadioButton:
      return true;
    default:
      return false;
  }
}

}  // namespace

bool ProgramStyle::losesEdges(const QPalette& palette) const {
  const QColor window = palette.color(QPalette::Window);
  return baseStyle()->name() == QLatin1String("fusion") &&
         contrast(window, window.darker(fusionDarkens)) < visibleEdge;
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
  QPalette palette = option->palette;
  if (element == PE_PanelItemViewRow && isUnfocusedList(widget)) makePale(palette);
  if (element == PE_PanelLineEdit && option->state.testFlag(State_ReadOnly))
    palette.setColor(QPalette::Base, palette.color(QPalette::Window));
  if (hasEdge(element) && losesEdges(palette)) showEdges(palette);
  const LentOption lent(option, palette);
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  if (element == PE_FrameFocusRect && !isRow(widget)) drawFocusLine(*painter, *option, captionLine);
}

void ProgramStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
  QPalette palette = option->palette;
  const auto* const row = qstyleoption_cast<const QStyleOptionViewItem*>(option);
  if (element == CE_ItemViewItem && row != nullptr && row->state.testFlag(State_Selected)) {
    if (isUnfocusedList(widget)) makePale(palette);
    keepColour(row->index, palette);
  }
  const LentOption lent(option, palette);
  const auto* const entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
  if (element == CE_MenuItem && entry != nullptr && entry->menuItemType == QStyleOptionMenuItem::Separator)
    return drawLine(*entry, painter, widget);
  QProxyStyle::drawControl(element, option, painter, widget);
  if (element == CE_ShapedFrame && isFocusedList(widget)) drawFocusLine(*painter, *option, focusLine);
}

/// The text of a separator would be drawn as a heading.
void ProgramStyle::drawLine(QStyleOptionMenuItem entry, QPainter* painter, const QWidget* widget) const {
  entry.text.clear();
  QProxyStyle::drawControl(CE_MenuItem, &entry, painter, widget);
}

void ProgramStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
  QPalette palette = option->palette;
  if (control == CC_ComboBox && losesEdges(palette)) showEdges(palette);
  const LentOption lent(option, palette);
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

int ProgramStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  const int plain = QProxyStyle::pixelMetric(metric, option, widget);
  return metric == PM_DefaultFrameWidth && isList(widget) ? qMax(plain, focusLine) : plain;
}

void dressApplication() {
  QApplication::setStyle(new ProgramStyle);
  QApplication::setWindowIcon(programIcon());
  makeTogglesClicks();
}

}  // namespace platform::desktop
