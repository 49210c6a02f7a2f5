#include "platform/desktop/HelpFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QResource>
#include <QTextBlock>
#include <QTextDocument>

namespace platform::desktop {
namespace {

constexpr qsizetype sumLength = 32;
constexpr QLatin1String root("/help");
constexpr QLatin1String contentsPage("index.html");

const uchar* bytesOf(const QByteArray& data) { return reinterpret_cast<const uchar*>(data.constData()); }

bool sumFits(const QByteArray& data) {
  const QByteArray front = data.chopped(qMin(sumLength, data.size()));
  return QCryptographicHash::hash(front, QCryptographicHash::Md5).toHex() ==
         data.last(data.size() - front.size());
}

}  // namespace

HelpFile::HelpFile(const QString& path) : problem_(read(path)) {}

HelpFile::~HelpFile() {
  if (registered_) QResource::unregisterResource(bytesOf(data_), root);
}

/// The sum is looked at first: Qt believes all that a resource says of itself.
QString HelpFile::read(const QString& path) {
  QFile file(path);
  if (!file.exists()) return QStringLiteral("The help file is missing:\n%1").arg(path);
  if (!file.open(QIODevice::ReadOnly))
    return QStringLiteral("The help file cannot be read:\n%1\n%2").arg(path, file.errorString());
  data_ = file.readAll();
  registered_ = sumFits(data_) && QResource::registerResource(bytesOf(data_), root);
  if (registered_) return {};
  return QStringLiteral("This is no help file, or it is damaged:\n%1").arg(path);
}

QUrl HelpFile::urlOf(const QString& page) const {
  const QString name = page.section(u'#', 0, 0);
  const QString path = root + (name.startsWith(u'/') ? QString() : QStringLiteral("/")) + name;
  const bool there = path.endsWith(QLatin1String(".html")) && QFile::exists(u':' + path);
  QUrl url(QStringLiteral("qrc:") + (there ? path : root + u'/' + contentsPage));
  if (there && page.contains(u'#')) url.setFragment(page.section(u'#', 1));
  return url;
}

QList<HelpFile::Entry> HelpFile::contents() const {
  QList<Entry> entries{{QStringLiteral("Contents"), contentsPage}};
  QFile file(u':' + root + u'/' + contentsPage);
  if (!file.open(QIODevice::ReadOnly)) return entries;
  QTextDocument document;
  document.setHtml(QString::fromUtf8(file.readAll()));
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
    for (auto at = block.begin(); !at.atEnd(); ++at) {
      const QString link = at.fragment().charFormat().anchorHref();
      if (!link.isEmpty()) entries.append({at.fragment().text(), link});
    }
  return entries;
}

}  // namespace platform::desktop
