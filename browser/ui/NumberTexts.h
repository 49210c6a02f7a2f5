#pragma once

#include "browser/SizeText.h"
#include "platform/desktop/Locale.h"

namespace browser {

/// Numbers as a locale writes them, which is lent.
inline NumberTexts numberTexts(const platform::desktop::Locale& locale) {
  return {[&locale](std::uint64_t number) { return locale.numberText(number); },
          [&locale](double number, int decimals) { return locale.decimalText(number, decimals); }};
}

}  // namespace browser
