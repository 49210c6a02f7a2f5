// What a start costs at the least: an empty window, to compare with.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QWidget window;
  window.show();
  return QApplication::exec();
}
