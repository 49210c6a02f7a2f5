// Opens every window and goes over it as a screen reader does, through the accessibility bus, and by Tab.
// Prints what is missing, a line each, and ends with 1 if anything is. a11y_test.sh gives it a display and a
// bus.

#include <QApplication>
#include <QLineEdit>
#include <QWidget>
#include <iostream>

#include "browser/ui/DrawnMenu.h"
#include "platform/desktop/ProgramStyle.h"
#include "tools/a11y_rules.h"
#include "tools/every_window.h"

namespace {

QList<QWidget*> openMenus(const QWidget& window) {
  QList<QWidget*> open;
  for (auto* const menu : window.findChildren<browser::DrawnMenu*>())
    if (menu->isVisible()) open.append(menu);
  return open;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  platform::desktop::dressApplication();
  a11y::Bus bus;
  qsizetype windows = 0, missing = 0;
  tools::openEveryWindow([&](QWidget& window, const char* name) {
    if (windows++ == 0 && !bus.connect()) qFatal("the program is not on the accessibility bus");
    QStringList lines = a11y::missingOnTheBus(bus, window);
    const QList<QWidget*> menus = openMenus(window);
    for (QWidget* menu : menus) lines += a11y::missingOnTheBus(bus, *menu);
    // Menus go by arrow keys, and the box of a name is done at the first Tab.
    if (menus.isEmpty() && window.findChild<QLineEdit*>(QStringLiteral("txtName")) == nullptr)
      lines += a11y::missingByTab(window);
    missing += lines.size();
    for (const QString& line : lines) std::cerr << name << ": " << line.toStdString() << '\n';
  });
  std::cout << windows << " windows, " << missing << " missing\n";
  return missing == 0 ? 0 : 1;
}
