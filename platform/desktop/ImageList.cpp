#include "platform/desktop/ImageList.h"

#include <QList>

/// The pictures lie in a static library: nothing else makes the linker keep them.
static void keepPictures() { Q_INIT_RESOURCE(icons); }

namespace platform::desktop {
namespace {

QList<QIcon>* loadIcons() {
  keepPictures();
  auto* icons = new QList<QIcon>;
  for (const char* name : {"folder",  "folder-open", "file",     "video", "archive",  "program", "text",
                           "picture", "scan",        "web-page", "link",  "help",     "letter",  "sound",
                           "report",  "sheet",       "slides",   "chart", "document", "artwork", "shortcut"})
    icons->append(QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name))));
  return icons;
}

}  // namespace

QIcon imageIcon(int index) {
  // Never deleted: icons must not be torn down after the application that renders them.
  static const QList<QIcon>* const icons = loadIcons();
  return icons->value(index - 1);
}

QIcon emblemIcon(Emblem emblem) {
  keepPictures();
  return QIcon(emblem == Emblem::Link ? QStringLiteral(":/icons/emblem-link.svg")
                                      : QStringLiteral(":/icons/emblem-run.svg"));
}

QIcon programIcon() {
  keepPictures();
  return QIcon(QStringLiteral(":/icons/pakrune.svg"));
}

}  // namespace platform::desktop
