#pragma once

#include <QProxyStyle>
#include <QStyleOption>

namespace platform::desktop {

/// The desktop's style, and what it leaves to guess: which control has the focus, also before the first Tab
/// (a list: a line around it; the selection of all others is pale), that a text box is only for reading,
/// where boxes and buttons end in a dark palette. A row's own colour stays readable while it is selected.
class ProgramStyle : public QProxyStyle {
  Q_OBJECT

 public:
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;

 private:
  void drawLine(QStyleOptionMenuItem entry, QPainter* painter, const QWidget* widget) const;
  bool losesEdges(const QPalette& palette) const;
};

/// Gives a program of ours its style and the icon of its windows. To be called once there is a QApplication.
void dressApplication();

}  // namespace platform::desktop
