// Shows a page of a help file: hh.exe FILE[::/PAGE]

#include <QApplication>
#include <QFileInfo>

#include "platform/desktop/HelpWindow.h"
#include "platform/desktop/MessageBox.h"
#include "platform/desktop/ProgramStyle.h"
#include "platform/desktop/Text.h"
#include "tools/hh_instance.h"

namespace {

struct Wanted {
  QString file;
  QString page;
};

Wanted wantedBy(const QString& argument) {
  const qsizetype at = argument.lastIndexOf(QLatin1String("::/"));
  if (at < 0 || QFileInfo::exists(argument)) return {argument, {}};
  return {argument.first(at), argument.sliced(at + 3)};
}

int refuse(const QString& why) {
  using namespace platform::desktop;
  messageBox(fromControl(why), "Pakrune Help", BoxIcon::Critical, BoxButtons::Ok);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  platform::desktop::dressApplication();
  if (argc != 2) return refuse(QStringLiteral("Usage: hh.exe FILE[::/PAGE]"));
  const Wanted wanted = wantedBy(QFile::decodeName(argv[1]));
  const platform::desktop::HelpFile file(wanted.file);
  if (!file.problem().isEmpty()) return refuse(file.problem());
  platform::desktop::HelpWindow window(file);
  hh::Instance instance(wanted.file, [&window](const QString& page) {
    window.showPage(page);
    window.comeToFront();
  });
  if (instance.shownByAnother(wanted.page)) return 0;
  window.showPage(wanted.page);
  window.show();
  return QApplication::exec();
}
