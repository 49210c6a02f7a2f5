#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace platform::desktop {

/// The border between the program's texts and the controls.

/// An inner text for a text box: held characters stay held; CR LF and a lone CR become a line feed.
QString toControl(std::string_view inner);

/// What a control holds, as an inner text: valid UTF-8, line ends as line feeds.
std::string fromControl(const QString& text);

/// An inner text for a label, a tip, a box or a list row: as toControl, with the characters that are held
/// shown as themselves. The control must be told that it is plain text.
QString toShown(std::string_view inner);

/// A text for places that Qt guesses to be HTML and that offer no switch (tool tips): escaped where it would
/// be taken for that.
QString toPlainTip(std::string_view inner);

}  // namespace platform::desktop
