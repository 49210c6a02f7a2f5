// Takes a picture of every window of the program, over the disk that PAKRUNE_DRIVES names (screenshots.sh
// makes one): screenshots FOLDER [dark]

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <algorithm>
#include <iostream>

#include "browser/ui/DrawnMenu.h"
#include "platform/desktop/ProgramStyle.h"
#include "tools/every_window.h"

namespace {

QPalette darkPalette() {
  QPalette palette(QColor(0x2b, 0x2b, 0x2e), QColor(0x2b, 0x2b, 0x2e));
  const QColor back(0x2b, 0x2b, 0x2e), base(0x1f, 0x1f, 0x22), ink(0xe8, 0xe8, 0xe8), faint(0x8a, 0x8a, 0x8e);
  for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Button, QPalette::AlternateBase})
    palette.setColor(role, back);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
    palette.setColor(role, ink);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
    palette.setColor(QPalette::Disabled, role, faint);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::ToolTipBase, back);
  palette.setColor(QPalette::ToolTipText, ink);
  palette.setColor(QPalette::PlaceholderText, faint);
  palette.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xc0));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(0x6c, 0xb2, 0xf0));
  return palette;
}

/// Windows have few colours, and a file of few colours is a third of the size.
QList<QRgb> mainColours(const QImage& picture) {
  QHash<QRgb, int> count;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) ++count[picture.pixel(x, y)];
  QList<QRgb> colours = count.keys();
  std::sort(colours.begin(), colours.end(), [&count](QRgb a, QRgb b) {
    return std::pair(count[b], a) < std::pair(count[a], b);  // those alike in an order of their own
  });
  colours.resize(qMin<qsizetype>(colours.size(), 256));
  return colours;
}

QPixmap pictureOf(QWidget& window) {
  QPixmap picture = window.grab();
  QPainter painter(&picture);
  for (auto* menu : window.findChildren<browser::DrawnMenu*>())
    if (menu->isVisible()) painter.drawPixmap(window.mapFromGlobal(menu->pos()), menu->grab());
  return picture;
}

bool save(QWidget& window, const QString& file) {
  const QImage whole = pictureOf(window).toImage().convertToFormat(QImage::Format_RGB32);
  const QImage small =
      whole.convertToFormat(QImage::Format_Indexed8, mainColours(whole), Qt::ThresholdDither);
  if (small.save(file)) return true;
  std::cerr << "cannot write " << file.toStdString() << '\n';
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  platform::desktop::dressApplication();
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::cerr << "usage: screenshots FOLDER [dark]\n";
    return 2;
  }
  if (arguments.value(2) == QLatin1String("dark")) QApplication::setPalette(darkPalette());
  QDir().mkpath(arguments.at(1));
  bool ok = true;
  tools::openEveryWindow([&](QWidget& window, const char* name) {
    if (window.inherits("QFileDialog")) return;  // Qt's own, which tells where the disk lies on this machine
    const QString file = arguments.at(1) + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png");
    if (!save(window, file)) ok = false;
  });
  return ok ? 0 : 1;
}
