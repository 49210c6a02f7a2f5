#include "platform/desktop/Locale.h"

#include <QDateTime>
#include <cmath>

namespace platform::desktop {
namespace {

/// The locale's time with seconds. Only the long format has them everywhere; its time zone ("t", often in
/// brackets) goes, and "B" (the part of the day), which Qt prints as a letter, becomes AM/PM. Text between
/// single quotes stands for itself.
QString timeFormat(const QLocale& locale) {
  QString format;
  bool quoted = false;
  for (const QChar c : locale.timeFormat(QLocale::LongFormat)) {
    if (c == QLatin1Char('\'')) quoted = !quoted;
    if (!quoted && c == QLatin1Char('B'))
      format += QStringLiteral("AP");
    else if (quoted || c != QLatin1Char('t'))
      format += c;
  }
  return format.remove(QStringLiteral("()")).remove(QStringLiteral("[]")).trimmed();
}

}  // namespace

std::string Locale::dateTimeText(std::time_t time) const {
  const QDateTime moment = QDateTime::fromSecsSinceEpoch(time);
  const QString date = locale_.toString(moment.date(), QLocale::ShortFormat);
  if (moment.time() == QTime(0, 0)) return date.toStdString();
  return date.toStdString() + " " + timeText(time);
}

std::string Locale::timeText(std::time_t time) const {
  return locale_.toString(QDateTime::fromSecsSinceEpoch(time).time(), timeFormat(locale_)).toStdString();
}

std::string Locale::numberText(std::uint64_t number) const {
  QString separator = locale_.groupSeparator();
  if (separator.isEmpty()) separator = QStringLiteral(",");
  QString digits = QString::number(number);
  for (qsizetype at = digits.size() - 3; at > 0; at -= 3) digits.insert(at, separator);
  return digits.toStdString();
}

std::string Locale::decimalText(double number, int decimals) const {
  QString separator = locale_.decimalPoint();
  if (separator.isEmpty()) separator = QStringLiteral(".");
  // Rounded first: printing alone would send an exact half to the even digit.
  const double scale = std::pow(10.0, decimals);
  QString text = QString::number(std::round(number * scale) / scale, 'f', decimals);
  return text.replace(QLatin1Char('.'), separator).toStdString();
}

}  // namespace platform::desktop
