#include "platform/desktop/Text.h"

#include <QByteArrayView>
#include <QStringList>
#include <QTextDocument>

#include "platform/HeldName.h"

namespace platform::desktop {

QString toControl(std::string_view inner) {
  QString text = QString::fromUtf8(QByteArrayView(inner.data(), static_cast<qsizetype>(inner.size())));
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return text;
}

std::string fromControl(const QString& text) {
  QString inner = text;
  inner.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  inner.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return inner.toStdString();
}

QString toShown(std::string_view inner) {
  QStringList lines;
  std::string line;
  const auto endLine = [&] {
    lines.append(QString::fromStdString(shownName(line)));
    line.clear();
  };
  for (std::size_t i = 0; i < inner.size(); ++i) {
    const bool carriageReturn = inner[i] == '\r';
    if (carriageReturn && i + 1 < inner.size() && inner[i + 1] == '\n') ++i;
    if (carriageReturn || inner[i] == '\n')
      endLine();
    else
      line += inner[i];
  }
  endLine();
  return lines.join(QLatin1Char('\n'));
}

QString toPlainTip(std::string_view inner) {
  const QString shown = toShown(inner);
  if (!Qt::mightBeRichText(shown)) return shown;
  const QString escaped = shown.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"));
  return QStringLiteral("<span style=\"white-space:pre\">%1</span>").arg(escaped);
}

}  // namespace platform::desktop
