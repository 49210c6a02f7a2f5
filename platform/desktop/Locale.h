#pragma once

#include <QLocale>
#include <cstdint>
#include <ctime>
#include <string>

namespace platform::desktop {

/// Date and number texts as the user's locale writes them.
class Locale {
 public:
  explicit Locale(QLocale locale = QLocale::system()) : locale_(std::move(locale)) {}

  /// Short date, a blank, the time with seconds, in local time; the date alone at exactly midnight.
  std::string dateTimeText(std::time_t time) const;
  std::string timeText(std::time_t time) const;  ///< with seconds, in local time
  /// Digits in groups of three, separated by "," where the locale has no separator.
  std::string numberText(std::uint64_t number) const;
  /// Exactly `decimals` decimals, halves away from zero; "." where the locale has no decimal separator.
  /// Not grouped.
  std::string decimalText(double number, int decimals) const;

 private:
  QLocale locale_;
};

}  // namespace platform::desktop
